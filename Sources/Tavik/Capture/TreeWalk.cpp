#include "Capture/TreeWalk.h"

#include "Capture/Attribute.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace tavik {
namespace {

struct Waiting {
    ElementRef element;
    int level;
};

} // namespace

void walkBelow(const ElementRef& root, WalkLimits limits,
               const std::function<Step(const ElementRef&)>& visit) {
    std::vector<Waiting> waiting;
    const auto addChildren = [&](const ElementRef& element, int level) {
        if (level > limits.levels) return;
        auto children = attribute(element, &AccessibleElement::children, limits.children);
        std::ranges::reverse(children);
        for (ElementRef& child : children)
            waiting.push_back({std::move(child), level});
    };
    addChildren(root, 1);
    for (std::size_t visited = 0; !waiting.empty() && visited < limits.elements; ++visited) {
        const Waiting next = std::move(waiting.back());
        waiting.pop_back();
        const Step step = visit(next.element);
        if (step == Step::stop) return;
        if (step == Step::below) addChildren(next.element, next.level + 1);
    }
}

} // namespace tavik
