#include "App/Support/Fakes.h"
#include "Learning/FSRSScheduler.h"
#include "Learning/FixedIntervalScheduler.h"
#include "Platform/Null/MemoryPreferenceStore.h"
#include "Settings/AppSettings.h"

#include <gtest/gtest.h>

#include <limits>

namespace tavik {
namespace {

namespace Keys = PreferenceKeys;
using Storage = AppSettings::APIKeyStorage;

constexpr const char* account = AppSettings::standardKeychainAccount;

class AppSettingsTest : public testing::Test {
protected:
    AppSettings& make(const Preferences& initial = {}) {
        settings.reset();
        store.emplace(initial);
        return settings.emplace(*store, keychain, account);
    }

    AppSettings& makeWith(const char* key, PreferenceValue value) {
        Preferences initial;
        initial.set(key, std::move(value));
        return make(initial);
    }

    /// The key chain has answered.
    AppSettings& makeAnswered() {
        AppSettings& made = make();
        keychain.answerAll();
        return made;
    }

    test::FakeKeychain keychain;
    std::optional<MemoryPreferenceStore> store;
    std::optional<AppSettings> settings;
};

TEST_F(AppSettingsTest, anEmptyStoreGivesTheDefaultsAndStaysEmpty) {
    const AppSettings& fresh = makeAnswered();
    EXPECT_EQ(fresh.hotKey.value(), (HotKeyCombo{2, 2048}));
    EXPECT_TRUE(fresh.reminderEnabled.value());
    EXPECT_EQ(fresh.reminderHour.value(), 9);
    EXPECT_EQ(fresh.reminderMinute.value(), 0);
    EXPECT_EQ(fresh.schedulerKind.value(), SchedulerKind::fsrs);
    EXPECT_EQ(fresh.desiredRetention.value(), 0.9);
    EXPECT_FALSE(fresh.autoSpeak.value());
    EXPECT_EQ(fresh.llmConfig(), LLMConfig());
    EXPECT_FALSE(fresh.onboardingDone.value());
    EXPECT_EQ(fresh.hoverMode.value(), HoverMode::always);
    EXPECT_EQ(fresh.hoverDelay.value(), 0.5);
    EXPECT_EQ(store->values(), Preferences());
}

TEST_F(AppSettingsTest, valuesOfAWrongTypeUnknownOrImpossibleReadAsTheDefault) {
    using Text = std::string;
    EXPECT_EQ(makeWith(Keys::schedulerKind, Text("FSRS")).schedulerKind.value(),
              SchedulerKind::fsrs);
    EXPECT_EQ(makeWith(Keys::hoverMode, Text("never")).hoverMode.value(), HoverMode::always);
    EXPECT_EQ(makeWith(Keys::llmProvider, Text("openai")).llmProvider.value(),
              LLMConfig::Provider::none);
    EXPECT_EQ(makeWith(Keys::reminderHour, Text("8")).reminderHour.value(), 9);
    for (const double hour : {-1.0, 8.5, 24.0, 1e300})
        EXPECT_EQ(makeWith(Keys::reminderHour, hour).reminderHour.value(), 9) << hour;
    EXPECT_EQ(makeWith(Keys::reminderMinute, std::int64_t{60}).reminderMinute.value(), 0);
    EXPECT_TRUE(makeWith(Keys::reminderEnabled, Text("no")).reminderEnabled.value());
    for (const double share : {0.0, 1.0, -2.0, std::numeric_limits<double>::quiet_NaN()})
        EXPECT_EQ(makeWith(Keys::desiredRetention, share).desiredRetention.value(), 0.9) << share;
    EXPECT_EQ(makeWith(Keys::hoverDelay, -0.1).hoverDelay.value(), 0.5);
    EXPECT_EQ(makeWith(Keys::llmModel, std::int64_t{4}).llmModel.value(), "");
    for (const char* const json : {R"({"keyCode":2})", R"({"keyCode":-1,"carbonModifiers":0})",
                                   "[]", "x", R"({"keyCode":4294967296,"carbonModifiers":0})",
                                   R"({"keyCode":"2","carbonModifiers":0})"})
        EXPECT_EQ(makeWith(Keys::hotKey, Text(json)).hotKey.value(), HotKeyCombo()) << json;
    EXPECT_EQ(makeWith(Keys::hotKey, true).hotKey.value(), HotKeyCombo());
}

TEST_F(AppSettingsTest, everyChangeIsWrittenAtOnceInTheFormThatIsReadAgain) {
    AppSettings& changed = make();
    changed.hotKey.set({40, 0x1900});
    changed.reminderEnabled.set(false);
    changed.reminderHour.set(23);
    changed.reminderMinute.set(59);
    changed.schedulerKind.set(SchedulerKind::fixed);
    changed.desiredRetention.set(0.85);
    changed.autoSpeak.set(true);
    changed.llmProvider.set(LLMConfig::Provider::openAICompatible);
    changed.llmModel.set("m");
    changed.llmBaseURL.set("http://localhost/v1");
    changed.onboardingDone.set(true);
    changed.hoverMode.set(HoverMode::withOption);
    changed.hoverDelay.set(1.25);
    const Preferences kept = store->values();
    EXPECT_EQ(kept.text(Keys::hotKey), R"({"keyCode":40,"carbonModifiers":6400})");
    EXPECT_EQ(kept.integer(Keys::reminderHour), 23);
    EXPECT_EQ(kept.text(Keys::llmProvider), "openAICompatible");

    const AppSettings& again = make(kept);
    EXPECT_EQ(again.hotKey.value(), (HotKeyCombo{40, 0x1900}));
    EXPECT_FALSE(again.reminderEnabled.value());
    EXPECT_EQ(again.reminderMinute.value(), 59);
    EXPECT_EQ(again.schedulerKind.value(), SchedulerKind::fixed);
    EXPECT_EQ(again.desiredRetention.value(), 0.85);
    EXPECT_TRUE(again.autoSpeak.value());
    EXPECT_EQ(again.llmConfig(),
              (LLMConfig{LLMConfig::Provider::openAICompatible, "m", "http://localhost/v1", ""}));
    EXPECT_TRUE(again.onboardingDone.value());
    EXPECT_EQ(again.hoverMode.value(), HoverMode::withOption);
    EXPECT_EQ(again.hoverDelay.value(), 1.25);
}

TEST_F(AppSettingsTest, aChangeIsAnnouncedBeforeItTakesEffectAndNoLongerAfterTheSubscription) {
    AppSettings& observed = make();
    std::vector<std::pair<int, int>> seen;
    {
        const Subscription subscription = observed.reminderHour.observe(
            [&](int hour) { seen.emplace_back(observed.reminderHour.value(), hour); });
        observed.reminderHour.set(10);
    }
    observed.reminderHour.set(11);
    EXPECT_EQ(seen, (std::vector<std::pair<int, int>>{{9, 10}}));
}

TEST_F(AppSettingsTest, theModelAndTheSchedulerAreTheOnesChosenAtThatMoment) {
    AppSettings& chosen = makeAnswered();
    chosen.llmProvider.set(LLMConfig::Provider::anthropic);
    EXPECT_EQ(chosen.llmConfig().model, LLMConfig::defaultAnthropicModel);
    chosen.llmProvider.set(LLMConfig::Provider::openAICompatible);
    EXPECT_EQ(chosen.llmConfig().model, "");
    const Card card = Card::new_(1, dateFromSeconds(1e9));
    const auto interval = [&] {
        return chosen.scheduler()->review(card, Rating::good, card.due).card.due - card.due;
    };
    const auto standard = interval();
    chosen.desiredRetention.set(0.8);
    EXPECT_GT(interval(), standard);
    chosen.schedulerKind.set(SchedulerKind::fixed);
    EXPECT_NE(dynamic_cast<FixedIntervalScheduler*>(chosen.scheduler().get()), nullptr);
}

TEST_F(AppSettingsTest, theKeyIsReadLaterAndKeptInTheKeyChainOnly) {
    keychain.secrets[account] = "sk-1";
    AppSettings& reading = make();
    EXPECT_EQ(reading.llmAPIKey.value(), "");
    keychain.answerAll();
    EXPECT_EQ(reading.llmConfig().apiKey, "sk-1");
    EXPECT_EQ(reading.apiKeyStorage.value(), Storage::keychain);
    reading.llmAPIKey.set("sk-2");
    keychain.answerAll();
    EXPECT_EQ(keychain.secrets[account], "sk-2");
    reading.llmAPIKey.set("");
    keychain.answerAll();
    EXPECT_TRUE(keychain.secrets.empty());
    reading.llmAPIKey.set("first");
    reading.llmAPIKey.set("second");
    keychain.state = KeychainState::unavailable;
    std::exchange(keychain.answers, {keychain.answers.back()}).front()();
    EXPECT_EQ(reading.apiKeyStorage.value(), Storage::keychain) << "only the newest key tells";
    keychain.answerAll();
    EXPECT_EQ(reading.apiKeyStorage.value(), Storage::memory);
    EXPECT_EQ(store->values(), Preferences());
}

TEST_F(AppSettingsTest, aKeyThatWasSetIsNotReplacedByALateAnswerAndNobodyAnswersAfterTheEnd) {
    keychain.secrets[account] = "old";
    AppSettings& reading = make();
    reading.llmAPIKey.set("new");
    keychain.answerAll();
    EXPECT_EQ(reading.llmAPIKey.value(), "new");
    EXPECT_EQ(keychain.secrets[account], "new");
    make();
    settings.reset();
    keychain.answerAll();
}

TEST_F(AppSettingsTest, aLockedOrMissingKeyChainIsAskedAgainUntilItOpensOrTheUserSetsAKey) {
    keychain.secrets[account] = "sk-1";
    keychain.state = KeychainState::locked;
    AppSettings& waiting = makeAnswered();
    EXPECT_EQ(waiting.apiKeyStorage.value(), Storage::locked);
    keychain.state = KeychainState::open;
    waiting.retry();
    keychain.answerAll();
    EXPECT_EQ(waiting.llmAPIKey.value(), "sk-1");
    waiting.retry();
    EXPECT_TRUE(keychain.answers.empty());

    keychain.state = KeychainState::unavailable;
    AppSettings& alone = makeAnswered();
    alone.llmAPIKey.set("sk-2");
    keychain.answerAll();
    EXPECT_EQ(alone.apiKeyStorage.value(), Storage::memory);
    int questions = 0;
    for (int minute = 0; minute < 240; ++minute) {
        alone.retry();
        questions += static_cast<int>(keychain.answers.size());
        keychain.answerAll();
    }
    EXPECT_LT(questions, 12) << "ever less often";
    keychain.state = KeychainState::open;
    for (int minute = 0; minute < 60; ++minute)
        alone.retry();
    keychain.answerAll();
    keychain.answerAll();
    EXPECT_EQ(keychain.secrets[account], "sk-2") << "the user's key, not the one of before";
    EXPECT_EQ(alone.apiKeyStorage.value(), Storage::keychain);
}

} // namespace
} // namespace tavik
