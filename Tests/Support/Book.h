#pragma once

#include "Storage/SQLiteDB.h"
#include "Support/TemporaryDirectory.h"
#include "Vocabulary/VocabularyStore.h"

#include <gtest/gtest.h>

#include <string>

namespace tavik::test {

inline const Date bookTime = dateFromSeconds(1.75e9);

/// A moment some days after `bookTime`.
inline Date day(double days) {
    return bookTime + std::chrono::duration<double>(days * secondsPerDay);
}

inline VocabularyStore::AddResult addWord(VocabularyStore& book, const std::string& lemma,
                                          const std::optional<std::string>& sentence = std::nullopt,
                                          Date now = bookTime) {
    return book.add(lemma, lemma, std::nullopt, lemma, sentence, std::nullopt, {}, now);
}

/// Everything that stands in a vocabulary file, as text, and nothing of how it is stored.
std::string dump(const std::string& path);

/// "ok", or what SQLite finds wrong with the file.
std::string quickCheck(const std::string& path);

/// A test with a book of its own.
class BookTest : public testing::Test {
protected:
    TemporaryDirectory directory;
    std::string path = directory.file("tavik.sqlite");
};

} // namespace tavik::test
