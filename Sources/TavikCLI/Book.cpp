#include "TavikCLI/Book.h"

#include "Base/AsideFile.h"
#include "Base/DataDirectory.h"
#include "Dictionary/OfflineDictionary.h"
#include "Text/TextUtil.h"
#include "Vocabulary/BookFailure.h"

#include <iostream>
#include <stdexcept>
#include <system_error>

namespace tavik {
namespace fs = std::filesystem;

namespace {

constexpr const char* bookName = "tavik.sqlite";

} // namespace

fs::path bookPath() {
    const fs::path directory = dataDirectory(environmentVariable);
    std::error_code error;
    fs::create_directories(directory, error);
    std::error_code ignored;
    if (error && !fs::is_directory(directory, ignored))
        throw FileError("建不了目录 " + directory.string() + "（" + error.message()
                        + "），请检查权限，或者用环境变量 TAVIK_DATA_DIR 指定别的目录");
    return directory / bookName;
}

int withBook(const std::function<int(VocabularyStore&)>& body) {
    const std::string path = bookPath().string();
    try {
        VocabularyStore book(path);
        return body(book);
    } catch (const SQLiteDB::Error& error) {
        throw std::runtime_error(bookFailure(path, error));
    }
}

std::unique_ptr<VocabularyStore> openBookOrScratch(BookCreation creation) {
    constexpr const char* inMemory = ":memory:";
    const fs::path existing = dataDirectory(environmentVariable) / bookName;
    std::error_code ignored;
    if (creation == BookCreation::forbidden && !fs::exists(existing, ignored))
        return std::make_unique<VocabularyStore>(inMemory);
    try {
        return std::make_unique<VocabularyStore>(bookPath().string());
    } catch (const SQLiteDB::Error& error) {
        std::cerr << "提示：" << bookFailure(existing.string(), error) << '\n';
    } catch (const std::runtime_error& error) {
        std::cerr << "提示：" << error.what() << '\n';
    }
    return std::make_unique<VocabularyStore>(inMemory);
}

std::optional<std::int64_t> findWord(const VocabularyStore& book,
                                     const OfflineDictionary* dictionary, const std::string& text) {
    const std::string normal = TextUtil::normalizeWord(text);
    if (const auto id = book.wordIDForLemma(normal)) return id;
    const auto straightened = TextUtil::straightenedCandidate(text);
    if (straightened)
        if (const auto id = book.wordIDForLemma(TextUtil::normalizeWord(*straightened))) return id;
    if (dictionary == nullptr) return std::nullopt;
    return book.wordIDForLemma(dictionary->lemma(straightened.value_or(normal)));
}

} // namespace tavik
