#pragma once

#include "Platform/Linux/AtSpi/AtSpiCalls.h"
#include "Platform/Linux/AtSpi/NodeText.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavik {

class AtSpiTree;

/// One object of an application, of which each thing is asked once. Lives as long as its tree.
class AtSpiNode {
public:
    AtSpiNode(AtSpiTree& tree, AtSpiReference reference);

    const AtSpiReference& reference() const { return object; }

    /// Lets go of all answers.
    void forget() { known = {}; }

    /// What does not say what it is counts as a password.
    std::uint32_t role();
    AtSpiNode* parent();
    std::vector<AtSpiNode*> children(std::size_t limit);
    /// Nothing when it does not say.
    std::optional<bool> hasChild();

    bool isPassword() { return role() == atspi::rolePasswordText; }

    bool isPage() { return role() == atspi::roleDocumentWeb; }

    AtSpiStates states();

    bool isTerminal() { return role() == atspi::roleTerminal; }

    /// A field of one text, which is not part of the page around it.
    bool isTextField();
    /// Whether it stands within a line of its parent.
    bool isInline();

    /// This node, if it is a page, or the innermost page that it stands in; null outside pages.
    AtSpiNode* page();
    /// Whether that page stands within another one.
    bool isInInnerPage();

    /// The length by the application's own count; nothing when it has no text or it may not be
    /// read.
    std::optional<std::int32_t> characterCount();
    /// Whether the text is too long to be read at once.
    bool isVeryLong();
    /// The whole text. Null when it has none, or a very long one.
    const NodeText* text();
    /// What is selected, in the application's own counting, the first end first; nothing when that
    /// is empty.
    std::optional<AtSpiRange> rawSelection();
    /// What is selected in `text`; nothing when that is empty.
    std::optional<UTF16Range> selection();

    /// What stands in `text` for the embedded object at the unit; null when that is no object or it
    /// cannot be had.
    AtSpiNode* embeddedAt(std::int64_t unit);

private:
    std::optional<UTF16Range> askedSelection();
    /// The width of a terminal; 0 if that is unknown.
    std::int64_t columns();
    std::optional<UTF16Range> repairedSelection(const NodeText& all,
                                                std::optional<AtSpiRange> ends);

    AtSpiTree& tree;
    AtSpiReference object;

    /// What has been answered so far.
    struct Facts {
        std::optional<std::uint32_t> role;
        std::optional<AtSpiNode*> parent;
        std::optional<AtSpiNode*> page;
        std::optional<bool> isInline;
        std::optional<AtSpiStates> states;
        std::optional<std::optional<std::int32_t>> count;
        std::optional<std::optional<NodeText>> text;
        std::optional<std::optional<AtSpiRange>> rawSelection;
        std::optional<std::optional<UTF16Range>> selection;
        std::map<std::int64_t, AtSpiNode*> embedded;
    };

    Facts known;
};

/// The objects of one session.
class AtSpiTree {
public:
    explicit AtSpiTree(AtSpiCalls& calls) : atSpiCalls(calls) {}

    AtSpiCalls& calls() { return atSpiCalls; }

    /// Always the same for the same reference; null for a null reference.
    AtSpiNode* node(const AtSpiReference& reference);

    /// Lets all nodes forget their answers.
    void forget();

    /// Whether the application to which the object belongs is built with that toolkit.
    bool isOfToolkit(const AtSpiReference& object, std::string_view name);

private:
    AtSpiCalls& atSpiCalls;
    std::map<AtSpiReference, std::unique_ptr<AtSpiNode>> nodes;
    std::map<std::string, std::string> toolkits;
};

} // namespace tavik
