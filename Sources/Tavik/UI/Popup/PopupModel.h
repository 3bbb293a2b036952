#pragma once

#include "Base/Published.h"
#include "Explanation/ExplanationRecords.h"
#include "Lookup/LookupService.h"

#include <functional>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace tavik {

/// What a popup shows of one lookup.
class PopupModel {
public:
    struct Loading {
        bool operator==(const Loading&) const = default;
    };

    struct Failed {
        std::string message;

        bool operator==(const Failed&) const = default;
    };

    /// The state of the language model's explanation: under way, done, or failed.
    using Explain = std::variant<Loading, ContextExplanation, Failed>;

    PopupModel(LookupResult result, std::string captureMethod);

    ~PopupModel() = default;
    PopupModel(const PopupModel&) = delete;
    PopupModel& operator=(const PopupModel&) = delete;

    const LookupResult& result() const { return lookup; }

    /// "ax-marker", "ax-text", "clipboard" or "manual".
    const std::string& captureMethod() const { return method; }

    /// Nothing when no explanation was asked for.
    const Published<std::optional<Explain>>& explain() const { return explanation; }

    void setExplain(Explain state) { explanation.set(std::move(state)); }

    /// Whether the word is in the book.
    const Published<bool>& saved() const { return isSaved; }

    /// Why the last saving failed.
    const Published<std::optional<std::string>>& saveError() const { return error; }

    void setSaved();

    void setSaveError(std::string message) { error.set(std::move(message)); }

    /// The explanation, once it is done.
    const ContextExplanation* explanationDone() const;

    /// The word's meaning in its sentence, once that is known.
    std::optional<std::string> contextMeaning() const;

    /// The word above everything else: in the dictionary's spelling, or the selection itself.
    std::string title() const;

    /// That the selection is a form of another word; empty when it is not.
    std::string inflectionLine() const;

    /// Calls the observer before each change, until the subscriptions end.
    std::vector<Subscription> observeChanges(const std::function<void()>& observer) const;

private:
    LookupResult lookup;
    std::string method;
    Published<std::optional<Explain>> explanation{std::nullopt};
    Published<bool> isSaved;
    Published<std::optional<std::string>> error{std::nullopt};
};

} // namespace tavik
