#include "TavikCLI/Book.h"

#include "Base/AsideFile.h"
#include "Base/DataDirectory.h"
#include "Dictionary/OfflineDictionary.h"
#include "Text/TextUtil.h"
#include "Vocabulary/BookFailure.h"

#include <stdexcept>
#include <system_error>

namespace tavik {
namespace fs = std::filesystem;

fs::path bookPath() {
    const fs::path directory = dataDirectory(environmentVariable);
    std::error_code error;
    fs::create_directories(directory, error);
    if (error && !fs::is_directory(directory))
        throw FileError("建不了目录 " + directory.string() + "（" + error.message()
                        + "），请检查权限，或者用环境变量 TAVIK_DATA_DIR 指定别的目录");
    return directory / "tavik.sqlite";
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

std::optional<std::int64_t> findWord(const VocabularyStore& book,
                                     const OfflineDictionary* dictionary, const std::string& text) {
    const std::string normal = TextUtil::normalizeWord(text);
    if (const auto id = book.wordIDForLemma(normal)) return id;
    if (dictionary == nullptr) return std::nullopt;
    return book.wordIDForLemma(dictionary->lemma(normal));
}

} // namespace tavik
