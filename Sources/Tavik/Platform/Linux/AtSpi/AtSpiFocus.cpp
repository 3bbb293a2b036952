#include "Platform/Linux/AtSpi/AtSpiFocus.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <set>
#include <vector>

namespace tavik {
namespace {

constexpr std::size_t mostWindows = 100;
/// How long an application may take to say whether it is in front, if that is not known.
constexpr std::chrono::milliseconds glance{60};

/// Some objects say that they are focused although the focus is in a child of theirs.
constexpr int deepestFocus = 5;

constexpr std::size_t mostVisited = 4000;
constexpr std::size_t mostChildren = 300;
constexpr int deepestWalk = 60;

std::vector<AtSpiNode*> windowsOf(AtSpiNode& application) {
    return application.children(mostWindows);
}

AtSpiNode* activeWindowAtAGlance(AtSpiTree& tree, AtSpiNode& application,
                                 const std::string& title) {
    const AtSpiCalls::Glance brief(tree.calls(), glance);
    for (AtSpiNode* const window : windowsOf(application))
        if (tree.calls().states(window->reference()).contains(atspi::stateActive)
            && (title.empty() || tree.calls().name(window->reference()) == title))
            return window;
    return nullptr;
}

/// Looks for the focus object by object, where an application cannot be asked for it.
class FocusWalk {
public:
    explicit FocusWalk(AtSpiTree& tree) : tree(tree) {}

    AtSpiNode* from(AtSpiNode& window) {
        waiting.push_back({&window, 0});
        while (!waiting.empty() && !withText && seen.size() < mostVisited) {
            const Waiting next = waiting.back();
            waiting.pop_back();
            visit(*next.node, next.depth);
        }
        return withText ? withText : first;
    }

private:
    struct Waiting {
        AtSpiNode* node;
        int depth;
    };

    void visit(AtSpiNode& node, int depth) {
        if (!seen.insert(&node).second || isMenu(node)) return;
        const AtSpiStates states = tree.calls().states(node.reference());
        if (depth > 0 && !states.contains(atspi::stateShowing)) return;
        if (states.contains(atspi::stateFocused)) {
            if (!first) first = &node;
            if (node.isPassword() || node.characterCount()) withText = &node;
        }
        if (withText || depth >= deepestWalk) return;
        auto children = node.children(mostChildren);
        std::ranges::reverse(children);
        for (AtSpiNode* const child : children)
            waiting.push_back({child, depth + 1});
    }

    static bool isMenu(AtSpiNode& node) {
        constexpr std::array menus{atspi::roleMenu, atspi::roleMenuBar, atspi::rolePopupMenu};
        return std::ranges::find(menus, node.role()) != menus.end();
    }

    AtSpiTree& tree;
    std::vector<Waiting> waiting;
    std::set<AtSpiNode*> seen;
    AtSpiNode* first = nullptr;
    AtSpiNode* withText = nullptr;
};

} // namespace

AtSpiNode* applicationOf(AtSpiTree& tree, std::int64_t processIdentifier,
                         const std::optional<FrontApplication>& front) {
    AtSpiNode* found = nullptr;
    for (const AtSpiReference& reference : tree.calls().applications()) {
        AtSpiNode* const application = tree.node(reference);
        if (!application || tree.calls().processIdentifier(reference.bus) != processIdentifier)
            continue;
        // A process with two toolkits is there twice, once without windows.
        if (application->hasChild().value_or(false)) return application;
        if (!found) found = application;
    }
    if (found) return found;
    const bool isInFront = front && front->processIdentifier == processIdentifier;
    if (!isInFront || front->windowTitle.empty()) return nullptr;
    AtSpiNode* const window = activeWindow(tree, front->windowTitle);
    return window ? window->parent() : nullptr;
}

AtSpiNode* activeWindow(AtSpiTree& tree, const std::string& title) {
    for (const AtSpiReference& reference : tree.calls().applications()) {
        AtSpiNode* const application = tree.node(reference);
        if (!application) continue;
        if (AtSpiNode* const window = activeWindowAtAGlance(tree, *application, title))
            return window;
    }
    return nullptr;
}

AtSpiNode* activeWindowOf(AtSpiTree& tree, AtSpiNode& application, const std::string& title) {
    const auto windows = windowsOf(application);
    if (windows.size() == 1) return windows.front();
    std::vector<AtSpiNode*> active;
    std::vector<AtSpiNode*> showing;
    for (AtSpiNode* const window : windows) {
        const AtSpiStates states = tree.calls().states(window->reference());
        if (states.contains(atspi::stateActive)) active.push_back(window);
        if (states.contains(atspi::stateShowing)) showing.push_back(window);
    }
    const auto& candidates = active.empty() ? showing : active;
    if (candidates.empty()) return nullptr;
    if (candidates.size() == 1) return candidates.front();
    const auto titled = std::ranges::find_if(candidates, [&](AtSpiNode* window) {
        return tree.calls().name(window->reference()) == title;
    });
    return titled != candidates.end() ? *titled : candidates.front();
}

AtSpiNode* focusedIn(AtSpiTree& tree, AtSpiNode& window) {
    AtSpiNode* focused = tree.node(tree.calls().focusedBelow(window.reference()));
    if (!focused) return FocusWalk(tree).from(window);
    for (int i = 0; i < deepestFocus && !focused->isPage() && !focused->isTextField(); ++i) {
        AtSpiNode* const inner = tree.node(tree.calls().focusedBelow(focused->reference()));
        if (!inner) break;
        focused = inner;
    }
    return focused;
}

} // namespace tavik
