#include "TavikDict/ClosedClasses.h"

#include <unordered_map>
#include <unordered_set>

namespace tavik {
namespace {

const std::unordered_map<std::string_view, std::string_view> irregularForms{
    {"am", "be"},       {"are", "be"},       {"is", "be"},       {"was", "be"},
    {"were", "be"},     {"been", "be"},      {"being", "be"},    {"has", "have"},
    {"had", "have"},    {"having", "have"},  {"does", "do"},     {"did", "do"},
    {"done", "do"},     {"doing", "do"},     {"better", "good"}, {"best", "good"},
    {"worse", "bad"},   {"worst", "bad"},    {"farther", "far"}, {"farthest", "far"},
    {"further", "far"}, {"furthest", "far"}, {"fewer", "few"},   {"fewest", "few"},
};

const std::unordered_set<std::string_view> ownBaseForms{
    // pronouns and determiners
    "i", "me", "my", "mine", "myself", "we", "us", "our", "ours", "ourselves", "you", "your",
    "yours", "yourself", "yourselves", "he", "him", "his", "himself", "she", "her", "hers",
    "herself", "it", "its", "itself", "they", "them", "their", "theirs", "themselves", "this",
    "that", "these", "those", "who", "whom", "whose", "which", "what", "some", "any", "all", "both",
    "each", "every", "either", "neither", "other", "others", "another", "such", "a", "an", "the",
    "less", "ya", "ye", "thy", "thee", "thou", "thine",
    // conjunctions, adverbs, modals and their clipped forms
    "where", "when", "why", "how", "not", "no", "nor", "and", "or", "but", "if", "than", "then",
    "thus", "so", "always", "perhaps", "lest", "can", "could", "may", "might", "shall", "should",
    "will", "would", "must", "ought", "n't", "wo",
    // prepositions, also those with the look of participles
    "as", "at", "by", "in", "on", "of", "to", "for", "from", "with", "during", "according",
    "barring", "concerning", "considering", "excluding", "including", "owing", "pending",
    "regarding",
    // nouns that only look inflected, or that have left their singular
    "news", "species", "series", "means", "media", "mains", "amends", "barracks", "proceeds",
    "shambles", "summons", "commoner"};

} // namespace

std::optional<std::string_view> closedClassBase(std::string_view word) {
    if (const auto irregular = irregularForms.find(word); irregular != irregularForms.end())
        return irregular->second;
    if (ownBaseForms.contains(word)) return std::string_view();
    return std::nullopt;
}

} // namespace tavik
