#pragma once

#include "Base/Published.h"
#include "Explanation/LLMConfig.h"
#include "Learning/SchedulerKind.h"
#include "Ports/Keychain.h"
#include "Ports/PreferenceStore.h"
#include "Settings/HotKeyCombo.h"
#include "Settings/HoverMode.h"

#include <memory>
#include <string>

namespace tavik {

/// What the user has chosen. One for the life of the process, on the main thread.
///
/// 1. Each preference is read when the settings are made; a value that is missing, of another type,
///    unknown or impossible reads as its default and stays in the store until it is set anew.
/// 2. A change is announced to observers, takes effect, and is written through to the store at
///    once; nothing else is ever written.
/// 3. The API key lives in the key chain alone. It is read in the background: until the answer
///    comes, and where none comes, it is empty. A key that was set is never replaced by a late
///    answer.
class AppSettings {
public:
    /// Where the API key is once the program ends.
    enum class APIKeyStorage {
        /// The key chain has not answered yet.
        unknown,
        keychain,
        /// The key chain is locked: a key may be in it.
        locked,
        /// There is no key chain, or it did not take the key: the key is lost with this process.
        memory,
    };

    static constexpr const char* standardKeychainAccount = "llm-api-key";

    /// Both must outlive the settings.
    AppSettings(PreferenceStore& defaults, Keychain& keychain, std::string keychainAccount);

    ~AppSettings() = default;
    AppSettings(const AppSettings&) = delete;
    AppSettings& operator=(const AppSettings&) = delete;

private:
    PreferenceStore& defaults;

public:
    // Each is a property with an interface of its own.
    // NOLINTBEGIN(cppcoreguidelines-non-private-member-variables-in-classes)
    Published<HotKeyCombo> hotKey;
    Published<bool> reminderEnabled;
    /// 0 to 23, on the wall clock.
    Published<int> reminderHour;
    /// 0 to 59.
    Published<int> reminderMinute;
    /// The moment up to which reminders have been shown or were not needed, in seconds since 1970;
    /// 0 if there has been none.
    Published<double> remindedUntil;
    Published<SchedulerKind> schedulerKind;
    /// The share of words to be remembered when they come back, for FSRS.
    Published<double> desiredRetention;
    Published<bool> autoSpeak;
    Published<LLMConfig::Provider> llmProvider;
    /// Empty for the provider's default.
    Published<std::string> llmModel;
    Published<std::string> llmBaseURL;
    Published<std::string> llmAPIKey;
    Published<bool> onboardingDone;
    Published<HoverMode> hoverMode;
    /// How long the mouse must rest on a word, in seconds.
    Published<double> hoverDelay;
    /// The programs whose start option the user has been told of: their identifiers, each on a line
    /// of its own.
    Published<std::string> startOptionTold;
    Published<APIKeyStorage> apiKeyStorage;
    // NOLINTEND(cppcoreguidelines-non-private-member-variables-in-classes)

    /// The language model as it is chosen at this moment.
    LLMConfig llmConfig() const;

    /// The scheduler as it is chosen at this moment; never null.
    std::unique_ptr<Scheduler> scheduler() const;

    /// Tries again what did not work: to write preferences, and to read the key from a key chain
    /// that was locked or missing, or to write it there. To be called once a minute; a key chain
    /// that stays away is asked ever less often, at last once an hour. Asks the user for nothing.
    void retry();

    /// Why there are changes that are not kept: a Chinese sentence that says what to do.
    std::optional<std::string> failure() const { return defaults.failure(); }

private:
    void readAPIKey();
    void takeAPIKey(const Keychain::Answer& answer);
    void writeAPIKey(const std::string& key);
    void setStorage(APIKeyStorage storage);

    Keychain& keychain;
    std::string keychainAccount;
    bool isAPIKeySet = false;
    int writesUnderWay = 0;
    /// Calls of `retry` from one question to the next, and since the last.
    int retryPause = 0;
    int retriesWaited = 0;
    /// Answers of the key chain may come when the settings are gone.
    std::shared_ptr<AppSettings*> self;
};

} // namespace tavik
