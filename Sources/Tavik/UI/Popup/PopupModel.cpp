#include "UI/Popup/PopupModel.h"

#include "Text/TextUtil.h"

#include <utility>

namespace tavik {

PopupModel::PopupModel(LookupResult result, std::string captureMethod)
    : lookup(std::move(result)), method(std::move(captureMethod)), isSaved(lookup.alreadySaved) {}

void PopupModel::setSaved() {
    error.set(std::nullopt);
    isSaved.set(true);
}

const ContextExplanation* PopupModel::explanationDone() const {
    const auto& state = explanation.value();
    return state ? std::get_if<ContextExplanation>(&*state) : nullptr;
}

std::optional<std::string> PopupModel::contextMeaning() const {
    const ContextExplanation* const done = explanationDone();
    if (done == nullptr || done->meaningInContext.empty()) return std::nullopt;
    return done->meaningInContext;
}

std::string PopupModel::title() const {
    return lookup.isWord ? lookup.headword() : lookup.selection;
}

std::string PopupModel::inflectionLine() const {
    const auto straight = TextUtil::straightenedCandidate(lookup.selection);
    const std::string selected = TextUtil::normalizeWord(straight.value_or(lookup.selection));
    if (!lookup.isWord || selected == TextUtil::normalizeWord(lookup.lemma)) return {};
    return "「" + lookup.selection + "」是 " + lookup.lemma + " 的变形";
}

std::vector<Subscription> PopupModel::observeChanges(const std::function<void()>& observer) const {
    std::vector<Subscription> subscriptions;
    subscriptions.push_back(explanation.observe([observer](const auto&) { observer(); }));
    subscriptions.push_back(isSaved.observe([observer](bool) { observer(); }));
    subscriptions.push_back(error.observe([observer](const auto&) { observer(); }));
    return subscriptions;
}

} // namespace tavik
