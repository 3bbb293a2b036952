#pragma once

#include "Ports/Accessibility.h"
#include "Ports/Workspace.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace tavik::test {

/// The units of `range` that lie in `text`.
inline std::u16string clampedPart(const std::u16string& text, UTF16Range range) {
    const auto size = static_cast<std::int64_t>(text.size());
    const std::int64_t start = std::clamp<std::int64_t>(range.location, 0, size);
    const std::int64_t length = std::clamp<std::int64_t>(range.length, 0, size - start);
    return text.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(length));
}

/// What is asked of a tree of elements, and which of it fails.
struct FakeTalk {
    /// Every question, as "name.attribute".
    std::vector<std::string> calls;
    /// Questions that fail.
    std::set<std::string> failing;
    /// The question that is not answered in time, and that there was it.
    std::string silent;
    bool hasTimedOut = false;
    /// How many questions are answered till the time is up.
    std::size_t answersLeft = SIZE_MAX;

    void ask(const std::string& question) {
        calls.push_back(question);
        hasTimedOut = hasTimedOut || question == silent;
        if (hasTimedOut || answersLeft == 0 || failing.contains(question))
            throw AccessibilityFailure(question);
        --answersLeft;
    }
};

/// An element that answers what a test has given it.
class FakeElement final : public AccessibleElement,
                          public std::enable_shared_from_this<FakeElement> {
public:
    FakeElement(std::string name, FakeTalk& talk) : name(std::move(name)), talk(&talk) {}

    /// What it has. Other elements belong to the tree.
    struct Attributes {
        bool describesPages = false;
        FakeElement* focusedUIElement = nullptr;
        FakeElement* focusedWindow = nullptr;
        std::optional<AccessibleRole> role = AccessibleRole::other;
        FakeElement* parent = nullptr;
        std::vector<FakeElement*> children;
        std::optional<std::string> url;
        std::optional<std::string> document;
        std::optional<std::u16string> value;
        std::optional<std::int64_t> numberOfCharacters;
        std::optional<std::u16string> selectedText;
        std::optional<UTF16Range> selectedTextRange;
        std::optional<std::u16string> longText;
        std::optional<ScreenRect> bounds;
        /// With all that it contains.
        std::optional<std::u16string> wholeText;
        std::optional<TextMarkerRange> selectedMarkers;
        std::optional<TextMarkerRange> paragraph;
        std::optional<ScreenRect> markerBounds;
    };

    ElementRef ref() { return shared_from_this(); }

    /// Puts `child` behind the children it has.
    void add(FakeElement& child) {
        child.has.parent = this;
        has.children.push_back(&child);
    }

    void setMessagingTimeout(std::chrono::milliseconds limit) override {
        ask("timeout(" + std::to_string(limit.count()) + ')');
    }

    std::optional<bool> setManualAccessibility() override {
        ask("describe");
        return has.describesPages;
    }

    ElementRef focusedUIElement() override {
        ask("focus");
        return refOf(has.focusedUIElement);
    }

    ElementRef focusedWindow() override {
        ask("window");
        return refOf(has.focusedWindow);
    }

    std::optional<AccessibleRole> role() override {
        ask("role");
        return has.role;
    }

    ElementRef parent() override {
        ask("parent");
        return refOf(has.parent);
    }

    std::vector<ElementRef> children(std::size_t limit) override {
        ask("children(" + std::to_string(limit) + ')');
        std::vector<ElementRef> refs;
        for (FakeElement* const child : has.children)
            if (refs.size() < limit) refs.push_back(refOf(child));
        return refs;
    }

    std::optional<std::string> url() override {
        ask("url");
        return has.url;
    }

    std::optional<std::string> document() override {
        ask("document");
        return has.document;
    }

    std::optional<std::u16string> value() override {
        ask("value");
        return has.value;
    }

    std::optional<std::int64_t> numberOfCharacters() override {
        ask("count");
        return has.numberOfCharacters;
    }

    std::optional<std::u16string> selectedText() override {
        ask("selection");
        return has.selectedText;
    }

    std::optional<UTF16Range> selectedTextRange() override {
        ask("range");
        return has.selectedTextRange;
    }

    std::optional<std::u16string> stringForRange(UTF16Range range) override {
        ask("string(" + std::to_string(range.location) + '+' + std::to_string(range.length) + ')');
        if (!has.longText) return std::nullopt;
        return clampedPart(*has.longText, range);
    }

    std::optional<ScreenRect> boundsForRange(UTF16Range) override {
        ask("bounds");
        return has.bounds;
    }

    std::optional<TextMarkerRange> selectedTextMarkerRange() override {
        ask("markers");
        return has.selectedMarkers;
    }

    std::optional<std::u16string> stringForTextMarkerRange(const TextMarkerRange& range) override {
        ask("markerString");
        const auto element = std::dynamic_pointer_cast<FakeElement>(range.element);
        if (!element || !element->has.wholeText) return std::nullopt;
        return clampedPart(*element->has.wholeText, range.range);
    }

    std::optional<ScreenRect> boundsForTextMarkerRange(const TextMarkerRange&) override {
        ask("markerBounds");
        return has.markerBounds;
    }

    std::optional<TextMarkerRange> textMarkerRangeForUIElement(const ElementRef& element) override {
        const auto asked = std::dynamic_pointer_cast<FakeElement>(element);
        ask("markersOf(" + asked->name + ')');
        if (!asked->has.wholeText) return std::nullopt;
        return TextMarkerRange{element,
                               {0, static_cast<std::int64_t>(asked->has.wholeText->size())}};
    }

    std::optional<TextMarkerRange>
    paragraphTextMarkerRangeForTextMarker(const TextMarker& marker) override {
        ask("paragraph(" + std::to_string(marker.offset) + ')');
        return has.paragraph;
    }

    std::string name;
    FakeTalk* talk;
    Attributes has;

private:
    void ask(const std::string& attribute) const { talk->ask(name + '.' + attribute); }

    static ElementRef refOf(FakeElement* element) {
        return element == nullptr ? nullptr : element->ref();
    }
};

/// A desktop of fake elements, which live as long as it does.
class FakeAccessibility final : public Accessibility {
public:
    FakeAccessibility() = default;

    /// Markers may refer to the element that has them.
    ~FakeAccessibility() override {
        for (const auto& element : elements)
            element->has = {};
    }

    FakeAccessibility(const FakeAccessibility&) = delete;
    FakeAccessibility& operator=(const FakeAccessibility&) = delete;

    std::unique_ptr<AccessibilitySession> startSession(const std::optional<FrontApplication>& front,
                                                       std::chrono::milliseconds limit) override {
        talk.ask("session(" + std::to_string(limit.count()) + ')');
        lastFront = front;
        return std::make_unique<Session>(*this);
    }

    FakeElement& make(const std::string& name) {
        elements.push_back(std::make_shared<FakeElement>(name, talk));
        return *elements.back();
    }

    FakeElement& make(const std::string& name, FakeElement& parent) {
        FakeElement& made = make(name);
        parent.add(made);
        return made;
    }

    /// `count` elements, each in the one before, the first in `top`. Returns the last.
    FakeElement& makeChain(FakeElement& top, int count) {
        FakeElement* last = &top;
        for (int i = 0; i < count; ++i)
            last = &make("link", *last);
        return *last;
    }

    FakeTalk talk;
    FakeElement* systemWide = nullptr;
    FakeElement* application = nullptr;
    std::optional<FrontApplication> lastFront;
    std::vector<std::shared_ptr<FakeElement>> elements;

private:
    class Session final : public AccessibilitySession {
    public:
        explicit Session(FakeAccessibility& desktop) : desktop(desktop) {}

        ElementRef systemWideElement() override {
            desktop.talk.ask("desktop");
            return desktop.systemWide == nullptr ? nullptr : desktop.systemWide->ref();
        }

        ElementRef applicationElement(std::int64_t processIdentifier) override {
            desktop.talk.ask("application(" + std::to_string(processIdentifier) + ')');
            return desktop.application == nullptr ? nullptr : desktop.application->ref();
        }

        bool hasTimedOut() const override { return desktop.talk.hasTimedOut; }

    private:
        FakeAccessibility& desktop;
    };
};

class FakeWorkspace final : public Workspace {
public:
    std::optional<FrontApplication> frontApplication() override {
        ++questions;
        if (isFailing) throw std::runtime_error("gone");
        return front;
    }

    std::vector<FrontApplication> applications() override { return running; }

    std::vector<ScreenRect> screens() override {
        ++screenQuestions;
        if (isFailing) throw std::runtime_error("gone");
        return shown;
    }

    std::optional<FrontApplication> front;
    std::vector<FrontApplication> running;
    std::vector<ScreenRect> shown{{0, 0, 1920, 1080}, {1920, 0, 1280, 1024}};
    bool isFailing = false;
    int questions = 0;
    int screenQuestions = 0;
};

} // namespace tavik::test
