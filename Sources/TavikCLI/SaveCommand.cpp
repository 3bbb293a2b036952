#include "TavikCLI/SaveCommand.h"

#include "Lookup/LookupService.h"
#include "TavikCLI/Book.h"
#include "TavikCLI/DictionaryFile.h"
#include "TavikCLI/InputLines.h"
#include "TavikCLI/JSONLine.h"
#include "TavikCLI/LookupReport.h"
#include "TavikTerminal/CommandLine.h"
#include "Text/Unicode.h"

#include <nlohmann/json.hpp>
#include <unistd.h>

#include <algorithm>
#include <iostream>

namespace tavik {
namespace {

std::optional<std::string> unlessEmpty(const std::string& text) {
    return text.empty() ? std::nullopt : std::optional(text);
}

std::int64_t encounterCount(const VocabularyStore& book, const std::string& lemma) {
    const auto id = book.wordIDForLemma(lemma);
    const auto item = id ? book.item(*id) : std::nullopt;
    return item ? item->encounterCount : 0;
}

std::string outcome(bool isNewWord, bool isNewSentence) {
    if (isNewWord) return "已保存";
    return isNewSentence ? "已在生词本里，记下了新的句子" : "已在生词本里";
}

} // namespace

SaveCommand::SaveCommand(CLI::App& app) : Command(app, "save", "把单词或短语存进生词本") {
    options().add_option("词", words,
                         "一个单词或短语；省略时从标准输入读，每行一个，制表符后面可以写它的句子");
    options()
        .add_option("--sentence", sentence, "遇到它的句子或段落，只存其中它所在的那一句")
        ->option_text("文字");
    options().add_option("--meaning", meaning, "它在句子里的意思")->option_text("文字");
    options().add_option("--app", appName, "句子来自哪个程序")->option_text("名称");
    options().add_option("--url", url, "句子所在的网页或文件的地址")->option_text("地址");
    addDictionaryOption(dictionaryPath);
    addJSONFlag(asJSON, "每个结果输出一行 JSON");
    options().footer("已经存过的词只加上新的句子，复习进度不变。");
}

int SaveCommand::run() const {
    return withBook([&](VocabularyStore& book) {
        const auto dictionary = openDictionaryIfAny(dictionaryPath);
        const LookupService service(dictionary.get(), book);
        if (!words.empty()) return save(service, book, phraseOf(words), sentence);
        if (isatty(STDIN_FILENO) == 1) std::cerr << "请输入要存的词，每行一个，按 Ctrl+D 结束。\n";
        return saveLines(service, book, std::cin);
    });
}

int SaveCommand::saveLines(const LookupService& service, const VocabularyStore& book,
                           std::istream& input) const {
    int code = exitOK;
    forEachLine(input, [&](const std::string& line) {
        const std::size_t tab = std::min(line.find('\t'), line.size());
        const std::string_view selection = std::string_view(line).substr(0, tab);
        const std::string_view own = std::string_view(line).substr(std::min(tab + 1, line.size()));
        code = std::max(code, save(service, book, selection, own.empty() ? sentence : own));
    });
    return code;
}

int SaveCommand::save(const LookupService& service, const VocabularyStore& book,
                      std::string_view selection, std::string_view text) const {
    const SourceInfo source{unlessEmpty(appName), std::nullopt, unlessEmpty(url)};
    const LookupResult lookup = lookUpInContext(service, selection, text, source).lookup;
    if (lookup.lemma.empty()) {
        std::cerr << "“" << printable(selection) << "”里没有可以保存的词。\n";
        return exitError;
    }
    const std::int64_t known = encounterCount(book, lookup.lemma);
    const auto added = service.save(lookup, unlessEmpty(meaning), currentDate());
    if (asJSON) {
        const nlohmann::ordered_json json{{"wordID", added.wordID},
                                          {"isNewWord", added.isNewWord},
                                          {"lemma", lookup.lemma},
                                          {"headword", lookup.headword()}};
        std::cout << jsonLine(json) << '\n' << std::flush;
        return exitOK;
    }
    std::cout << printable(lookup.headword()) << "  "
              << outcome(added.isNewWord, encounterCount(book, lookup.lemma) > known)
              << (lookup.isWord ? "" : "（词典里没有它的释义）") << '\n'
              << std::flush;
    return exitOK;
}

} // namespace tavik
