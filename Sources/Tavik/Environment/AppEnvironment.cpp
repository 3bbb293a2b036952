#include "Environment/AppEnvironment.h"

#include "Base/ResourceFile.h"
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
      self(std::make_shared<AppEnvironment*>(this)) {
    watchStore();
    refreshCounts();
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

void AppEnvironment::refreshCounts() {
    const int failuresBefore = failureCount;
    const std::int64_t dueCount = vocabularyStore.dueCount(ports.now());
    const std::int64_t wordCount = vocabularyStore.wordCount();
    isReadable = failureCount == failuresBefore;
    due.set(dueCount);
    total.set(wordCount);
}

void AppEnvironment::noteFailure(const SQLiteDB::Error& error) {
    const Date now = ports.now();
    const std::string what = bookFailure(bookPath, error);
    trouble.set(BookTrouble{now, what});
    if (alarm.raise(now)) ports.notifier.notify("Tavik 无法读写生词本", what);
}

} // namespace tavik
