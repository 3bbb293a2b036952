#include "Capture/TextAttributeReader.h"

#include "Capture/Attribute.h"
#include "Capture/SelectedText.h"
#include "Capture/TreeWalk.h"
#include "Text/TextUtil.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <utility>

namespace tavik {
namespace {

/// How much is read on each side of a selection in a text that is too long to be read whole.
constexpr std::int64_t windowReach = 300;

constexpr WalkLimits sentenceSearch{8, 200};
constexpr WalkLimits selectionSearch{10, 300};

/// The sum, or the largest number there is. Neither is negative.
std::int64_t saturatedSum(std::int64_t left, std::int64_t right) {
    const std::int64_t rest = std::numeric_limits<std::int64_t>::max() - left;
    return right > rest ? std::numeric_limits<std::int64_t>::max() : left + right;
}

std::optional<std::string> sentenceFromWindow(const ElementRef& element, UTF16Range selection) {
    if (selection.location < 0 || selection.length < 0) return std::nullopt;
    const std::int64_t start = std::max<std::int64_t>(selection.location - windowReach, 0);
    std::int64_t end =
        saturatedSum(saturatedSum(selection.location, selection.length), windowReach);
    if (const auto count = attribute(element, &AccessibleElement::numberOfCharacters))
        end = std::min(end, *count);
    if (end <= start) return std::nullopt;
    const auto text =
        attribute(element, &AccessibleElement::stringForRange, UTF16Range{start, end - start});
    if (!text) return std::nullopt;
    return TextUtil::sentence(*text, {selection.location - start, selection.length},
                              maxSentenceLength);
}

std::optional<std::string> sentenceAround(const ElementRef& element, UTF16Range selection) {
    if (const auto value = attribute(element, &AccessibleElement::value))
        return TextUtil::sentence(*value, selection, maxSentenceLength);
    return sentenceFromWindow(element, selection);
}

/// The sentence of the first text in `element` or below it that contains the key.
std::optional<std::string> sentenceBySearching(const ElementRef& element, std::u16string_view key) {
    std::optional<std::string> sentence;
    const auto visit = [&](const ElementRef& visited) {
        const auto value = attribute(visited, &AccessibleElement::value);
        if (!value) return Step::below;
        const auto place = firstOccurrence(*value, key);
        if (!place) return Step::below;
        sentence = sentenceAt(*value, *place, key);
        return sentence ? Step::stop : Step::past;
    };
    if (visit(element) == Step::below) walkBelow(element, sentenceSearch, visit);
    return sentence;
}

} // namespace

std::optional<CaptureCandidate> fromTextAttributes(const ElementRef& element,
                                                   ScreenAnchor& anchor) {
    auto text = attribute(element, &AccessibleElement::selectedText);
    if (!isSelection(text)) return std::nullopt;
    CaptureCandidate found{{}, {}, {}, CaptureMethod::axText};
    if (const auto range = attribute(element, &AccessibleElement::selectedTextRange)) {
        found.sentence = sentenceAround(element, *range);
        found.anchor = anchor.from(attribute(element, &AccessibleElement::boundsForRange, *range));
    }
    if (!found.sentence) found.sentence = sentenceBySearching(element, trimmed(*text));
    found.text = *std::move(text);
    return found;
}

ElementRef selectedDescendant(const ElementRef& element) {
    ElementRef selected;
    walkBelow(element, selectionSearch, [&](const ElementRef& visited) {
        if (!isSelection(attribute(visited, &AccessibleElement::selectedText))
            || !attribute(visited, &AccessibleElement::selectedTextRange))
            return Step::below;
        selected = visited;
        return Step::stop;
    });
    return selected;
}

} // namespace tavik
