#include "Settings/AppSettings.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <utility>

namespace tavik {
namespace {

bool booleanAt(const PreferenceStore& store, const char* key, bool standard) {
    return store.values().boolean(key).value_or(standard);
}

int integerAt(const PreferenceStore& store, const char* key, int standard, int max) {
    const auto value = store.values().integer(key);
    return value && *value >= 0 && *value <= max ? static_cast<int>(*value) : standard;
}

std::string textAt(const PreferenceStore& store, const char* key) {
    return store.values().text(key).value_or("");
}

HotKeyCombo hotKeyAt(const PreferenceStore& store) {
    return hotKeyFromJSON(textAt(store, PreferenceKeys::hotKey)).value_or(HotKeyCombo{});
}

double hoverDelayAt(const PreferenceStore& store) {
    constexpr double standard = 0.5;
    constexpr double longest = 60;
    const auto value = store.values().number(PreferenceKeys::hoverDelay);
    return value && *value >= 0 && *value <= longest ? *value : standard;
}

double momentAt(const PreferenceStore& store, const char* key) {
    constexpr double farAway = 1e11;
    const auto value = store.values().number(key);
    return value && *value >= 0 && *value < farAway ? *value : 0;
}

/// Writes each new value of a preference through to the store, as the store keeps it.
template<typename T>
typename Published<T>::Observer writer(PreferenceStore& store, const char* key) {
    return [&store, key](const T& value) { store.set(key, value); };
}

template<typename Enum>
typename Published<Enum>::Observer caseWriter(PreferenceStore& store, const char* key) {
    return [&store, key](Enum value) { store.set(key, std::string(rawValue(value))); };
}

typename Published<int>::Observer integerWriter(PreferenceStore& store, const char* key) {
    return [&store, key](int value) { store.set(key, std::int64_t{value}); };
}

} // namespace

AppSettings::AppSettings(PreferenceStore& defaults, Keychain& keychain, std::string keychainAccount)
    : defaults(defaults), hotKey(hotKeyAt(defaults),
                                 [this](const HotKeyCombo& combo) {
                                     this->defaults.set(PreferenceKeys::hotKey, hotKeyJSON(combo));
                                 }),
      reminderEnabled(booleanAt(defaults, PreferenceKeys::reminderEnabled, true),
                      writer<bool>(defaults, PreferenceKeys::reminderEnabled)),
      reminderHour(integerAt(defaults, PreferenceKeys::reminderHour, 9, 23),
                   integerWriter(defaults, PreferenceKeys::reminderHour)),
      reminderMinute(integerAt(defaults, PreferenceKeys::reminderMinute, 0, 59),
                     integerWriter(defaults, PreferenceKeys::reminderMinute)),
      remindedUntil(momentAt(defaults, PreferenceKeys::remindedUntil),
                    writer<double>(defaults, PreferenceKeys::remindedUntil)),
      schedulerKind(tavik::schedulerKind(defaults.values()),
                    caseWriter<SchedulerKind>(defaults, PreferenceKeys::schedulerKind)),
      desiredRetention(tavik::desiredRetention(defaults.values()),
                       writer<double>(defaults, PreferenceKeys::desiredRetention)),
      autoSpeak(booleanAt(defaults, PreferenceKeys::autoSpeak, false),
                writer<bool>(defaults, PreferenceKeys::autoSpeak)),
      llmProvider(providerFromRawValue(textAt(defaults, PreferenceKeys::llmProvider))
                      .value_or(LLMConfig::Provider::none),
                  caseWriter<LLMConfig::Provider>(defaults, PreferenceKeys::llmProvider)),
      llmModel(textAt(defaults, PreferenceKeys::llmModel),
               writer<std::string>(defaults, PreferenceKeys::llmModel)),
      llmBaseURL(textAt(defaults, PreferenceKeys::llmBaseURL),
                 writer<std::string>(defaults, PreferenceKeys::llmBaseURL)),
      llmAPIKey({}, [this](const std::string& key) { writeAPIKey(key); }),
      onboardingDone(defaults.values().isSet(PreferenceKeys::onboardingDone),
                     writer<bool>(defaults, PreferenceKeys::onboardingDone)),
      hoverMode(hoverModeFromRawValue(textAt(defaults, PreferenceKeys::hoverMode))
                    .value_or(HoverMode::always),
                caseWriter<HoverMode>(defaults, PreferenceKeys::hoverMode)),
      hoverDelay(hoverDelayAt(defaults), writer<double>(defaults, PreferenceKeys::hoverDelay)),
      startOptionTold(textAt(defaults, PreferenceKeys::startOptionTold),
                      writer<std::string>(defaults, PreferenceKeys::startOptionTold)),
      apiKeyStorage(APIKeyStorage::unknown), keychain(keychain),
      keychainAccount(std::move(keychainAccount)), self(std::make_shared<AppSettings*>(this)) {
    readAPIKey();
}

LLMConfig AppSettings::llmConfig() const {
    LLMConfig config;
    config.provider = llmProvider.value();
    config.model = llmModel.value();
    if (config.model.empty() && config.provider == LLMConfig::Provider::anthropic)
        config.model = LLMConfig::defaultAnthropicModel;
    config.baseURL = llmBaseURL.value();
    config.apiKey = llmAPIKey.value();
    return config;
}

std::unique_ptr<Scheduler> AppSettings::scheduler() const {
    return makeScheduler(schedulerKind.value(), desiredRetention.value());
}

void AppSettings::retry() {
    defaults.flush();
    const auto storage = apiKeyStorage.value();
    if (storage != APIKeyStorage::locked && storage != APIKeyStorage::memory) return;
    if (retriesWaited++ < retryPause) return;
    retriesWaited = 0;
    retryPause = std::min(2 * retryPause + 1, 59);
    readAPIKey();
}

void AppSettings::readAPIKey() {
    keychain.get(keychainAccount, [weak = std::weak_ptr(self)](const Keychain::Answer& answer) {
        if (const auto settings = weak.lock()) (*settings)->takeAPIKey(answer);
    });
}

void AppSettings::takeAPIKey(const Keychain::Answer& answer) {
    if (isAPIKeySet) {
        const bool isLost = apiKeyStorage.value() == APIKeyStorage::memory && writesUnderWay == 0;
        if (isLost && answer.state == KeychainState::open) writeAPIKey(llmAPIKey.value());
        return;
    }
    if (answer.secret) llmAPIKey.replace(*answer.secret);
    switch (answer.state) {
    case KeychainState::open:
        return setStorage(APIKeyStorage::keychain);
    case KeychainState::locked:
        return setStorage(APIKeyStorage::locked);
    case KeychainState::unavailable:
        return setStorage(APIKeyStorage::memory);
    }
}

void AppSettings::writeAPIKey(const std::string& key) {
    isAPIKeySet = true;
    ++writesUnderWay;
    keychain.set(key, keychainAccount, [weak = std::weak_ptr(self)](bool isKept) {
        const auto settings = weak.lock();
        // Only the newest key tells.
        if (!settings || --(*settings)->writesUnderWay > 0) return;
        (*settings)->setStorage(isKept ? APIKeyStorage::keychain : APIKeyStorage::memory);
    });
}

void AppSettings::setStorage(APIKeyStorage storage) {
    if (storage != apiKeyStorage.value()) apiKeyStorage.set(storage);
}

} // namespace tavik
