#pragma once

#include "Base/Calendar.h"
#include "Vocabulary/VocabularyRecords.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavik {

class VocabularyStore;

/// A word with all sentences in which it was met, newest first.
struct WordHistory {
    VocabItem item;
    std::vector<Encounter> encounters;
};

/// The whole book, newest words first. Throws `SQLiteDB::Error`.
std::vector<WordHistory> wordHistories(const VocabularyStore& store);

enum class ExportFormat {
    /// For spreadsheets: UTF-8 with a byte-order mark, a line for each encounter. A cell that a
    /// spreadsheet would take for a formula begins with "'".
    csv,
    /// Every word, encounter and card, as an array of objects with the fields' names as keys.
    json,
    /// For Anki's text import: tab-separated HTML with the directives that Anki reads, one note a
    /// word, the word bold in its sentences.
    anki,
};

/// The format of the name "csv", "json" or "anki".
std::optional<ExportFormat> exportFormat(std::string_view name);

/// The book as one text. `calendar` is for the moments that people read.
std::string exportedBook(const std::vector<WordHistory>& words, ExportFormat format,
                         const Calendar& calendar);

enum class TableFormat {
    /// For spreadsheets: UTF-8 with a byte-order mark, by RFC 4180.
    csv,
    /// Tabs between the cells, for pasting and for other programs.
    tsv,
};

/// A line for each word under a line of titles, in the order given. A cell that a spreadsheet would
/// take for a formula begins with "'".
std::string exportedItems(const std::vector<VocabItem>& items, TableFormat format,
                          const Calendar& calendar);

} // namespace tavik
