#pragma once

#include "Base/Calendar.h"
#include "TavikTerminal/Report.h"
#include "Vocabulary/VocabularyRecords.h"

#include <vector>

namespace tavik {

/// What a report on the book needs to know of the world.
struct ReportSetting {
    const Terminal& terminal;
    const Calendar& calendar;
    Date now;
};

/// Adds a line for each word: when it is due, how often it was met, its gloss.
void addItems(Report& report, const std::vector<VocabItem>& items, const ReportSetting& setting);

/// Adds everything about one word.
void addWord(Report& report, const VocabItem& item, const std::vector<Encounter>& encounters,
             const ReportSetting& setting);

/// Adds the sentence, with the word marked in it, and where it stood; nothing without a sentence.
void addEncounter(Report& report, const Encounter& encounter, const Word& word, std::size_t indent);

/// The word as a title, with its phonetics.
std::string wordTitle(const Report& report, const Word& word);

} // namespace tavik
