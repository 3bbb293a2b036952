#pragma once

#include "Vocabulary/VocabularyStore.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace tavik {

class OfflineDictionary;

/// Where the user's vocabulary book lies. Its directory is created when it is missing; throws
/// `FileError` when it cannot be.
std::filesystem::path bookPath();

/// Opens the user's book and calls `body`. What SQLite reports on the way is thrown as a runtime
/// error with a Chinese sentence.
int withBook(const std::function<int(VocabularyStore&)>& body);

enum class BookCreation { allowed, forbidden };

/// The user's book, for commands that can do without: an empty one that nothing is kept of where it
/// cannot be opened, or is missing and must not be created.
std::unique_ptr<VocabularyStore> openBookOrScratch(BookCreation creation);

/// The id of the saved word that `text` means: as it is, or by its base form if there is a
/// dictionary.
std::optional<std::int64_t> findWord(const VocabularyStore& book,
                                     const OfflineDictionary* dictionary, const std::string& text);

} // namespace tavik
