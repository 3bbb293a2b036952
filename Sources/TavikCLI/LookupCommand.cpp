#include "TavikCLI/LookupCommand.h"

#include "Explanation/ExplanationJSON.h"
#include "TavikCLI/Book.h"
#include "TavikCLI/DictionaryFile.h"
#include "TavikCLI/Explainer.h"
#include "TavikCLI/InputLines.h"
#include "TavikCLI/JSONLine.h"
#include "TavikCLI/LookupReport.h"
#include "TavikTerminal/CommandLine.h"
#include "TavikTerminal/Terminal.h"

#include <nlohmann/json.hpp>
#include <unistd.h>

#include <iostream>

namespace tavik {

LookupCommand::LookupCommand(CLI::App& app)
    : Command(app, "lookup", "查单词或短语的释义、变形和例句") {
    options().add_option("词", words, "要查的单词或短语；省略时从标准输入读，每行一个");
    options()
        .add_option("--sentence", sentence, "单词所在的句子或段落，结果里会标出它")
        ->option_text("文字");
    addDictionaryOption(dictionaryPath);
    addJSONFlag(asJSON, "每个结果输出一行 JSON");
    options().add_flag("--explain", explains, "再请大模型说明它在句子里的意思");
    model.addTo(options());
    options().footer("几个词先合起来当作短语查；词典里没有这个短语时，逐个查。\n"
                     "退出码：0 都查到了，2 有没查到的，1 出错。\n"
                     + std::string(ModelOptions::help()));
}

int LookupCommand::run() const {
    const auto dictionary = openDictionary(dictionaryPath);
    const auto book = openBookOrScratch(explains ? BookCreation::allowed : BookCreation::forbidden);
    const LookupService service(dictionary.get(), *book);
    Explainer explainer(service, *book, model);
    if (!words.empty()) return lookUpArguments(service, explainer);
    if (isatty(STDIN_FILENO) == 1) std::cerr << "请输入要查的词，每行一个，按 Ctrl+D 结束。\n";
    return lookUpLines(service, explainer, std::cin);
}

int LookupCommand::lookUpArguments(const LookupService& service, Explainer& explainer) const {
    const std::string phrase = phraseOf(words);
    if (words.size() == 1 || service.lookup(phrase, std::nullopt, {}).isWord)
        return lookUp(service, explainer, phrase) ? exitOK : exitNotFound;
    bool allFound = true;
    for (const std::string& word : words)
        allFound = lookUp(service, explainer, word) && allFound;
    return allFound ? exitOK : exitNotFound;
}

int LookupCommand::lookUpLines(const LookupService& service, Explainer& explainer,
                               std::istream& input) const {
    bool allFound = true;
    forEachLine(input, [&](const std::string& line) {
        allFound = lookUp(service, explainer, line) && allFound;
    });
    return allFound ? exitOK : exitNotFound;
}

bool LookupCommand::lookUp(const LookupService& service, Explainer& explainer,
                           const std::string& selection) const {
    const WordInContext word = lookUpInContext(service, selection, sentence);
    if (asJSON) {
        auto json = lookupJSON(word.lookup);
        if (explains) json["explanation"] = nlohmann::json(explainer.explain(word.lookup));
        std::cout << jsonLine(json) << '\n' << std::flush;
        return word.lookup.isWord;
    }
    const Terminal terminal = Terminal::of(STDOUT_FILENO);
    Report report(terminal);
    addLookup(report, word);
    // The entry is there at once, the model's answer when it comes.
    std::cout << report.finished() << std::flush;
    Report more(terminal);
    if (explains) addExplanation(more, explainer.explain(word.lookup));
    more.line("");
    std::cout << more.finished() << std::flush;
    return word.lookup.isWord;
}

} // namespace tavik
