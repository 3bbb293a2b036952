#pragma once

#include "Base/Calendar.h"
#include "Base/DataDirectory.h"
#include "Base/Date.h"
#include "Base/Published.h"
#include "Capture/CaptureLog.h"
#include "Capture/SelectionCapture.h"
#include "Dictionary/OfflineDictionary.h"
#include "Environment/BackgroundTasks.h"
#include "Environment/BookAlarm.h"
#include "Environment/Speech.h"
#include "Lookup/LookupService.h"
#include "Ports/Accessibility.h"
#include "Ports/AccessibilityTrust.h"
#include "Ports/Appearance.h"
#include "Ports/MainQueue.h"
#include "Ports/Notifier.h"
#include "Ports/Pasteboard.h"
#include "Ports/Processes.h"
#include "Ports/SpeechSynthesizer.h"
#include "Ports/Timers.h"
#include "Ports/Workspace.h"
#include "Reminders/ReminderManager.h"
#include "Settings/AppSettings.h"
#include "Vocabulary/VocabularyStore.h"

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace tavik {

/// What the environment asks of the outside world; all of it must outlive the environment.
struct EnvironmentPorts {
    MainQueue& mainQueue;
    SpeechSynthesizer& speechSynthesizer;
    Notifier& notifier;
    Accessibility& accessibility;
    AccessibilityTrust& accessibilityTrust;
    Workspace& workspace;
    Pasteboard& pasteboard;
    Processes& processes;
    Appearance& appearance;
    Timers& timers;
    std::function<Date()> now = currentDate;
    std::function<Calendar()> calendar = Calendar::current;
    std::filesystem::path captureLog = CaptureLog::standardPath(environmentVariable);
};

/// Owns the services that every window works with, and publishes what all of them show. One for
/// the life of the process, on the main thread.
class AppEnvironment final : private ReminderHost {
public:
    static constexpr const char* bookName = "tavik.sqlite";

    /// Where the user's data lie.
    static std::filesystem::path defaultDataDirectory(const EnvironmentReader& environment);

    /// The dictionary that came with the program, if there is one.
    static std::optional<std::filesystem::path> defaultDictionaryPath();

    /// Creates the data directory where it is missing and opens the book in it. A dictionary that
    /// is missing or cannot be read is left out. Throws `std::filesystem::filesystem_error`,
    /// `SQLiteDB::Error` or `EmptiedBookError`.
    AppEnvironment(const std::filesystem::path& dataDirectory, AppSettings& settings,
                   const std::optional<std::filesystem::path>& dictionaryPath,
                   EnvironmentPorts ports);

    ~AppEnvironment() override;
    AppEnvironment(const AppEnvironment&) = delete;
    AppEnvironment& operator=(const AppEnvironment&) = delete;

    AppSettings& settings() override { return appSettings; }

    VocabularyStore& store() { return vocabularyStore; }

    /// Null when there is none.
    const OfflineDictionary* dictionary() const { return offlineDictionary.get(); }

    LookupService& lookup() { return lookupService; }

    Speech& speech() { return speechOutput; }

    /// A copy may be used on another thread and outlive the environment.
    SelectionCapture& capture() { return selectionCapture; }

    const CaptureLog& captureLog() const { return log; }

    BackgroundTasks& tasks() { return backgroundTasks; }

    /// May be used on other threads by tasks of this environment.
    const HTTPSession& httpSession() const { return session; }

    const Published<bool>& prefersDark() const { return ports.appearance.prefersDark(); }

    Date now() const { return ports.now(); }

    /// The user's.
    Calendar calendar() const { return ports.calendar(); }

    /// Why the book could not be read or written: a Chinese sentence that says what to do.
    std::string failureText(const SQLiteDB::Error& error) const;

    ReminderManager& reminders();

    /// Words due and words saved, at the last refresh.
    const Published<std::int64_t>& dueNow() const { return due; }

    const Published<std::int64_t>& totalWords() const { return total; }

    /// Counts again and plans the reminder anew. Done by itself after every change of the book.
    void refreshCounts() override;

    /// Whether the counts could be read at the last refresh; else they are 0.
    bool isBookReadable() const { return isReadable; }

    /// When the book could last not be read or written, if ever.
    const Published<std::optional<BookTrouble>>& bookTrouble() const { return trouble; }

private:
    std::optional<std::int64_t> dueCount(Date at) override;

    CapturePorts capturePorts();
    void watchStore();
    void noteFailure(const SQLiteDB::Error& error);
    void tellOfStartOption(const std::string& bundleID);

    AppSettings& appSettings;
    EnvironmentPorts ports;
    Speech speechOutput;
    std::string bookPath;
    VocabularyStore vocabularyStore;
    std::unique_ptr<OfflineDictionary> offlineDictionary;
    LookupService lookupService;
    Published<std::int64_t> due{0};
    Published<std::int64_t> total{0};
    BookAlarm alarm;
    Published<std::optional<BookTrouble>> trouble{std::nullopt};
    std::atomic<int> failureCount{0};
    bool isReadable = true;
    /// What other threads hold of this environment, which may be gone when they come back.
    std::shared_ptr<AppEnvironment*> self;
    /// The trust in accessibility, for other threads.
    std::shared_ptr<std::atomic<bool>> isTrusted;
    Subscription trustChanges;
    SelectionCapture selectionCapture;
    CaptureLog log;
    HTTPSession session;
    std::unique_ptr<ReminderManager> reminderManager;
    /// The last, as its tasks use the others.
    BackgroundTasks backgroundTasks;
};

} // namespace tavik
