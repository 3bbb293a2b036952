#pragma once

#include "Dictionary/DictionaryRecords.h"
#include "UI/Widgets/Theme.h"
#include "Vocabulary/VocabularyRecords.h"

#include <QString>
#include <string>
#include <vector>

namespace tavik {

// HTML for paragraphs about a saved word.

/// The senses, with their parts of speech set apart.
QString definitionsHTML(const std::vector<std::string>& definitions, const Theme& theme);

/// The sentence, with the word as it was met pointed out; empty when there is none.
QString sentenceHTML(const Encounter& encounter, const Word& word, const Theme& theme);

QString exampleHTML(const ExampleSentence& example, const Word& word, const Theme& theme);

/// A phonetic transcription between slashes; empty when there is none.
QString phoneticText(const std::string& phonetic);

} // namespace tavik
