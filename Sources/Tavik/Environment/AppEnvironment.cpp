#include "Environment/AppEnvironment.h"

#include "Base/ResourceFile.h"
#include "Environment/StartOptionHint.h"
#include "Vocabulary/BookFailure.h"

#include <system_error>
#include <utility>

namespace tavik {
namespace fs = std::filesystem;

namespace {

std::string bookIn(const fs::path& directory) {
    fs::create_directories(directory);
    return (directory / AppEnvironment::bookName).string();
}

std::unique_ptr<OfflineDictionary> openedDictionary(const std::optional<fs::path>& path) {
    if (!path) return nullptr;
    try {
        return std::make_unique<OfflineDictionary>(path->string());
    } catch (const SQLiteDB::Error&) {
        return nullptr;
    }
}

bool isTrust(AccessibilityTrust::State state) {
    return state == AccessibilityTrust::State::trusted;
}

} // namespace

fs::path AppEnvironment::defaultDataDirectory(const EnvironmentReader& environment) {
    return tavik::dataDirectory(environment);
}

std::optional<fs::path> AppEnvironment::defaultDictionaryPath() {
    fs::path path = resourceFile("dict.sqlite");
    std::error_code ignored;
    if (!fs::exists(path, ignored)) return std::nullopt;
    return path;
}

AppEnvironment::AppEnvironment(const fs::path& dataDirectory, AppSettings& settings,
                               const std::optional<fs::path>& dictionaryPath,
                               EnvironmentPorts ports)
    : appSettings(settings), ports(std::move(ports)), speechOutput(this->ports.speechSynthesizer),
      bookPath(bookIn(dataDirectory)), vocabularyStore(bookPath),
      offlineDictionary(openedDictionary(dictionaryPath)),
      lookupService(offlineDictionary.get(), vocabularyStore),
      self(std::make_shared<AppEnvironment*>(this)),
      isTrusted(std::make_shared<std::atomic<bool>>(
          isTrust(this->ports.accessibilityTrust.state().value()))),
      trustChanges(this->ports.accessibilityTrust.state().observe(
          [isTrusted = isTrusted](AccessibilityTrust::State state) {
              *isTrusted = isTrust(state);
          })),
      selectionCapture(capturePorts()), log(this->ports.captureLog, this->ports.now),
      backgroundTasks(this->ports.mainQueue) {
    watchStore();
    refreshCounts();
}

AppEnvironment::~AppEnvironment() = default;

ReminderManager& AppEnvironment::reminders() {
    ReminderHost& host = *this;
    if (!reminderManager)
        reminderManager = std::make_unique<ReminderManager>(
            host, ReminderPorts{ports.notifier, ports.timers, ports.now, ports.calendar});
    return *reminderManager;
}

CapturePorts AppEnvironment::capturePorts() {
    const std::weak_ptr<AppEnvironment*> weak = self;
    MainQueue& queue = ports.mainQueue;
    return {ports.accessibility,
            ports.workspace,
            ports.pasteboard,
            ports.processes,
            [isTrusted = isTrusted] { return isTrusted->load(); },
            [weak, &queue](const std::string& bundleID) {
                queue.post([weak, bundleID] {
                    if (const auto environment = weak.lock())
                        (*environment)->tellOfStartOption(bundleID);
                });
            }};
}

void AppEnvironment::watchStore() {
    const std::weak_ptr<AppEnvironment*> weak = self;
    MainQueue& queue = ports.mainQueue;
    vocabularyStore.setOnChange([weak, &queue] {
        queue.post([weak] {
            if (const auto environment = weak.lock()) (*environment)->refreshCounts();
        });
    });
    vocabularyStore.setOnFailure([this, weak, &queue](const SQLiteDB::Error& error) {
        // The store is ours, and so are we there when it calls.
        ++failureCount;
        queue.post([weak, error] {
            if (const auto environment = weak.lock()) (*environment)->noteFailure(error);
        });
    });
}

std::optional<std::int64_t> AppEnvironment::dueCount(Date at) {
    const int failuresBefore = failureCount;
    const std::int64_t count = vocabularyStore.dueCount(at);
    return failureCount == failuresBefore ? std::optional(count) : std::nullopt;
}

void AppEnvironment::refreshCounts() {
    const int failuresBefore = failureCount;
    const Date now = ports.now();
    const std::int64_t dueCards = vocabularyStore.dueCount(now);
    const std::int64_t wordCount = vocabularyStore.wordCount();
    isReadable = failureCount == failuresBefore;
    due.set(dueCards);
    total.set(wordCount);
    reminders().reschedule(now);
}

void AppEnvironment::noteFailure(const SQLiteDB::Error& error) {
    const Date now = ports.now();
    const std::string what = failureText(error);
    trouble.set(BookTrouble{now, what});
    if (alarm.raise(now)) ports.notifier.notify({.title = "Tavik 无法读写生词本", .body = what});
}

std::string AppEnvironment::failureText(const SQLiteDB::Error& error) const {
    return bookFailure(bookPath, error);
}

void AppEnvironment::tellOfStartOption(const std::string& bundleID) {
    auto told = withStartOptionTold(appSettings.startOptionTold.value(), bundleID);
    if (!told) return;
    appSettings.startOptionTold.set(*std::move(told));
    ports.notifier.notify({.title = "需要启动选项才能读取网页", .body = startOptionHint(bundleID)});
}

} // namespace tavik
