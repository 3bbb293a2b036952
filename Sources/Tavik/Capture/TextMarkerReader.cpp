#include "Capture/TextMarkerReader.h"

#include "Capture/Attribute.h"
#include "Capture/SelectedText.h"
#include "Text/CharacterClasses.h"
#include "Text/Unicode.h"

#include <cstdint>
#include <limits>
#include <utility>

namespace tavik {
namespace {

constexpr int maxEnclosingElements = 6;

struct Paragraph {
    TextMarkerRange range;
    std::u16string text;
};

std::optional<std::u16string> stringOf(const ElementRef& element,
                                       const std::optional<TextMarkerRange>& range) {
    if (!range) return std::nullopt;
    return attribute(element, &AccessibleElement::stringForTextMarkerRange, *range);
}

std::optional<Paragraph> paragraphAt(const ElementRef& element, const TextMarker& marker) {
    const auto range =
        attribute(element, &AccessibleElement::paragraphTextMarkerRangeForTextMarker, marker);
    auto text = stringOf(element, range);
    if (!text) return std::nullopt;
    return Paragraph{*range, *std::move(text)};
}

std::string collapsed(std::string_view text) {
    return joined(split(text, isWhiteSpace), " ");
}

/// The sentence at the very place of the marker, unless it is little more than the key: then more
/// may be found around the paragraph.
std::optional<std::string> sentenceAtMarker(const Paragraph& paragraph, const TextMarker& marker,
                                            std::u16string_view key) {
    const std::int64_t start = paragraph.range.range.location;
    if (paragraph.range.element != marker.element || start < 0 || marker.offset < start)
        return std::nullopt;
    const auto sentence =
        sentenceAt(paragraph.text, static_cast<std::size_t>(marker.offset - start), key);
    if (!sentence) return std::nullopt;
    std::string line = collapsed(*sentence);
    const std::string keyLine = collapsed(utf8FromUTF16(key));
    if (lowercased(line).find(lowercased(keyLine)) == std::string::npos) return std::nullopt;
    if (!isClearlyLonger(utf16FromUTF8(line), utf16FromUTF8(keyLine))) return std::nullopt;
    return line;
}

/// The sentence in the first text around the marker's element that has more than the key.
std::optional<std::string> enclosingSentence(const ElementRef& element, const TextMarker& marker,
                                             std::u16string_view key) {
    ElementRef enclosing = marker.element;
    for (int level = 0; level < maxEnclosingElements; ++level) {
        enclosing = attribute(enclosing, &AccessibleElement::parent);
        if (enclosing == nullptr) return std::nullopt;
        if (attribute(enclosing, &AccessibleElement::role) == AccessibleRole::webArea)
            return std::nullopt;
        const auto text =
            stringOf(element, attribute(element, &AccessibleElement::textMarkerRangeForUIElement,
                                        enclosing));
        if (!text || !isClearlyLonger(*text, key)) continue;
        const auto place = firstOccurrence(*text, key);
        if (!place) return std::nullopt;
        if (auto sentence = sentenceAt(*text, *place, key)) return sentence;
    }
    return std::nullopt;
}

std::optional<std::string> paragraphSentence(const Paragraph& paragraph, std::u16string_view key) {
    const auto place = firstOccurrence(paragraph.text, key);
    if (!place) return std::nullopt;
    return sentenceAt(paragraph.text, *place, key);
}

/// Where the key of a selection begins: behind the white space that was selected with it.
std::optional<TextMarker> keyMarker(const TextMarkerRange& range, std::size_t leadingSpace) {
    const auto space = static_cast<std::int64_t>(leadingSpace);
    const std::int64_t start = range.range.location;
    if (range.element == nullptr || start < 0
        || start > std::numeric_limits<std::int64_t>::max() - space)
        return std::nullopt;
    return TextMarker{range.element, start + space};
}

} // namespace

std::optional<CaptureCandidate> fromTextMarkers(const ElementRef& element, ScreenAnchor& anchor) {
    const auto range = attribute(element, &AccessibleElement::selectedTextMarkerRange);
    auto text = stringOf(element, range);
    if (!isSelection(text)) return std::nullopt;
    const std::u16string_view key = trimmed(*text);
    CaptureCandidate found{{}, {}, {}, CaptureMethod::axMarker};
    const auto leadingSpace = static_cast<std::size_t>(key.data() - text->data());
    if (const auto marker = keyMarker(*range, leadingSpace))
        found.sentence = markerSentence(element, *marker, key);
    found.anchor =
        anchor.from(attribute(element, &AccessibleElement::boundsForTextMarkerRange, *range));
    found.text = *std::move(text);
    return found;
}

std::optional<std::string> markerSentence(const ElementRef& element, const TextMarker& marker,
                                          std::u16string_view key) {
    const auto paragraph = paragraphAt(element, marker);
    if (paragraph)
        if (auto sentence = sentenceAtMarker(*paragraph, marker, key)) return sentence;
    if (auto sentence = enclosingSentence(element, marker, key)) return sentence;
    if (paragraph) return paragraphSentence(*paragraph, key);
    return std::nullopt;
}

} // namespace tavik
