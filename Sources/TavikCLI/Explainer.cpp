#include "TavikCLI/Explainer.h"

#include "Explanation/LLMError.h"
#include "Text/Unicode.h"

#include <iostream>

namespace tavik {

Explainer::Explainer(const LookupService& service, const VocabularyStore& book,
                     const ModelOptions& options)
    : service(service), book(book), options(options) {}

ContextExplanation Explainer::explain(const LookupResult& lookup) {
    LLMConfig config = options.config();
    const std::string key = LookupService::cacheKey(lookup.selection, lookup.sentence);
    if (!apiKey && !book.cachedExplanation(key)) apiKey = options.apiKey();
    config.apiKey = apiKey.value_or("");
    const HTTPSession session;
    try {
        return service.explain(lookup, LLMClient(config, session));
    } catch (const LLMError& error) {
        if (error.kind != LLMError::Kind::notConfigured) throw;
        throw std::runtime_error(std::string(error.what())
                                 + "：请用 --provider、--model 等选项或环境变量指定，见 --help");
    }
}

std::optional<ContextExplanation> Explainer::explainOrReport(const LookupResult& lookup) {
    const auto report = [&](const char* reason) {
        std::cerr << printable(lookup.selection) << "：" << printable(reason) << '\n';
        return std::nullopt;
    };
    try {
        return explain(lookup);
    } catch (const LLMError& error) {
        return report(error.what());
    } catch (const TransportError& error) {
        return report(error.what());
    }
}

} // namespace tavik
