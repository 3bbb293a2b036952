#include "TavikCLI/ExplainCommand.h"

#include "Explanation/ExplanationJSON.h"
#include "TavikCLI/Book.h"
#include "TavikCLI/DictionaryFile.h"
#include "TavikCLI/Explainer.h"
#include "TavikCLI/JSONLine.h"
#include "TavikCLI/LookupReport.h"
#include "TavikTerminal/CommandLine.h"
#include "Text/Unicode.h"

#include <nlohmann/json.hpp>
#include <unistd.h>

#include <iostream>
#include <stdexcept>

namespace tavik {

ExplainCommand::ExplainCommand(CLI::App& app)
    : Command(app, "explain", "请大模型说明一个词在句子里的意思") {
    options().add_option("词", words, "单词、短语或句子")->required();
    options()
        .add_option("--sentence", sentence, "它所在的句子或段落，只用其中它所在的那一句")
        ->option_text("文字");
    model.addTo(options());
    addDictionaryOption(dictionaryPath);
    addJSONFlag(asJSON, "输出一行 JSON");
    options().footer(ModelOptions::help());
}

int ExplainCommand::run() const {
    const auto book = openBookOrScratch(BookCreation::allowed);
    const auto dictionary = openDictionaryIfAny(dictionaryPath);
    const LookupService service(dictionary.get(), *book);
    const LookupResult lookup = lookUpInContext(service, phraseOf(words), sentence).lookup;
    if (lookup.selection.empty()) throw std::runtime_error("没有要说明的词");
    const ContextExplanation explanation = Explainer(service, *book, model).explain(lookup);
    if (asJSON) {
        std::cout << jsonLine(nlohmann::json(explanation)) << '\n';
        return exitOK;
    }
    const Terminal terminal = Terminal::of(STDOUT_FILENO);
    Report report(terminal);
    report.line(report.inStyle(TextStyle::bold, lookup.selection));
    addExplanation(report, explanation);
    std::cout << report.finished();
    return exitOK;
}

} // namespace tavik
