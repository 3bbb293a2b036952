#include "Vocabulary/VocabularyRows.h"

#include <cmath>

namespace tavik::VocabularyRows {
namespace {

/// Midnight before the year 10000, in seconds: no honest file holds a moment beyond it.
constexpr double lastMoment = 253402300800;

std::string text(const SQLiteDB::Row& row, std::string_view column) {
    return std::string(row.text(column).value_or(std::string_view()));
}

std::optional<std::string> optionalText(const SQLiteDB::Row& row, std::string_view column) {
    const auto stored = row.text(column);
    if (!stored) return std::nullopt;
    return std::string(*stored);
}

double number(const SQLiteDB::Row& row, std::string_view column) {
    const double stored = row.double_(column).value_or(0);
    return std::isfinite(stored) ? stored : 0;
}

/// A REAL that is no 64-bit integer can only come from a damaged file.
std::int64_t integer(const SQLiteDB::Row& row, std::string_view column) {
    constexpr double bound = 0x1p63;
    const double approximately = row.double_(column).value_or(0);
    if (!(approximately >= -bound && approximately < bound)) {
        const auto* const whole = std::get_if<std::int64_t>(row.value(column));
        return whole != nullptr ? *whole : 0;
    }
    return row.int_(column).value_or(0);
}

std::optional<Date> moment(const SQLiteDB::Row& row, std::string_view column) {
    const auto seconds = row.double_(column);
    if (!seconds || !(std::abs(*seconds) < lastMoment)) return std::nullopt;
    return dateFromSeconds(*seconds);
}

Word word(const SQLiteDB::Row& row, Date now) {
    return {integer(row, "w_id"),  text(row, "lemma"), text(row, "headword"),
            text(row, "phonetic"), text(row, "brief"), moment(row, "created_at").value_or(now)};
}

} // namespace

Card card(const SQLiteDB::Row& row, Date now) {
    Card card;
    card.wordID = integer(row, "word_id");
    card.state = cardStateFromRawValue(row.text("state").value_or("")).value_or(CardState::new_);
    card.due = moment(row, "due").value_or(now);
    card.stability = number(row, "stability");
    card.difficulty = number(row, "difficulty");
    card.reps = integer(row, "reps");
    card.lapses = integer(row, "lapses");
    card.lastReview = moment(row, "last_review");
    return card;
}

Encounter encounter(const SQLiteDB::Row& row, std::int64_t wordID, Date now) {
    Encounter encounter;
    encounter.id = integer(row, "id");
    encounter.wordID = wordID;
    encounter.selection = text(row, "selection");
    encounter.sentence = optionalText(row, "sentence");
    encounter.contextMeaning = optionalText(row, "context_meaning");
    encounter.source.appName = optionalText(row, "source_app");
    encounter.source.bundleID = optionalText(row, "source_bundle_id");
    encounter.source.url = optionalText(row, "url");
    encounter.seenAt = moment(row, "seen_at").value_or(now);
    return encounter;
}

VocabItem item(const SQLiteDB::Row& row, Date now) {
    VocabItem item;
    item.word = word(row, now);
    item.card = card(row, now);
    item.encounterCount = integer(row, "n_enc");
    return item;
}

} // namespace tavik::VocabularyRows
