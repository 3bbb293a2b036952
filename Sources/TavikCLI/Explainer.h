#pragma once

#include "Lookup/LookupService.h"
#include "TavikCLI/ModelOptions.h"

namespace tavik {

/// Explains looked-up words with the model that the options name. The service and the options must
/// outlive it.
class Explainer {
public:
    Explainer(const LookupService& service, const VocabularyStore& book,
              const ModelOptions& options);

    /// As `LookupService::explain`; the key is asked for only when the answer is not known yet.
    ContextExplanation explain(const LookupResult& lookup);

    /// The same, but when there is no answer this time, the reason is printed to standard error and
    /// nothing comes back.
    std::optional<ContextExplanation> explainOrReport(const LookupResult& lookup);

private:
    const LookupService& service;
    const VocabularyStore& book;
    const ModelOptions& options;
    std::optional<std::string> apiKey;
};

} // namespace tavik
