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

#include <algorithm>
#include <iostream>

namespace tavik {
namespace {

/// Of two exit codes the one that tells of more: an error, then something not found.
int worse(int one, int other) {
    return one == exitError || other == exitError ? exitError : std::max(one, other);
}

} // namespace

LookupCommand::LookupCommand(CLI::App& app)
    : Command(app, "lookup", "查单词或短语的释义、变形和例句") {
    options().add_option("词", words, "要查的单词或短语；省略时从标准输入读，每行一个");
    options()
        .add_option("--sentence", sentence, "单词所在的句子或段落，结果里会标出它")
        ->option_text("文字");
    addDictionaryOption(dictionaryPath);
    addJSONFlag(asJSON, "每个结果输出一行 JSON");
    options().add_flag("--videos", showsVideos, "再列出读到它的视频片段的网址");
    options()
        .add_option("--accent", accentName, "YouGlish 的口音：us（默认）、uk 或 aus")
        ->option_text("口音")
        ->check([](const std::string& name) {
            return accentFromRawValue(name) ? "" : "只能是 us、uk 或 aus";
        });
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

Accent LookupCommand::accent() const {
    return accentFromRawValue(accentName).value_or(Accent::us);
}

int LookupCommand::lookUpArguments(const LookupService& service, Explainer& explainer) const {
    const std::string phrase = phraseOf(words);
    if (words.size() == 1 || service.lookup(phrase, std::nullopt, {}).isWord)
        return lookUp(service, explainer, phrase);
    int code = exitOK;
    for (const std::string& word : words)
        code = worse(code, lookUp(service, explainer, word));
    return code;
}

int LookupCommand::lookUpLines(const LookupService& service, Explainer& explainer,
                               std::istream& input) const {
    int code = exitOK;
    forEachLine(input, [&](const std::string& line) {
        code = worse(code, lookUp(service, explainer, line));
    });
    return code;
}

int LookupCommand::lookUp(const LookupService& service, Explainer& explainer,
                          const std::string& selection) const {
    const WordInContext word = lookUpInContext(service, selection, sentence);
    const Terminal terminal = Terminal::of(STDOUT_FILENO);
    if (!asJSON) {
        Report report(terminal);
        addLookup(report, word);
        if (showsVideos) addVideos(report, word.lookup, accent());
        // The entry is there at once, the model's answer when it comes.
        std::cout << report.finished() << std::flush;
    }
    const auto explanation =
        explains ? explainer.explainOrReport(word.lookup) : std::optional<ContextExplanation>();
    if (asJSON) {
        auto json = lookupJSON(word.lookup);
        if (showsVideos) json["videos"] = videosJSON(word.lookup, accent());
        if (explains) json["explanation"] = nullptr;
        if (explanation) json["explanation"] = nlohmann::json(*explanation);
        std::cout << jsonLine(json) << '\n' << std::flush;
    } else {
        Report more(terminal);
        if (explanation) addExplanation(more, *explanation);
        more.line("");
        std::cout << more.finished() << std::flush;
    }
    if (explains && !explanation) return exitError;
    return word.lookup.isWord ? exitOK : exitNotFound;
}

} // namespace tavik
