#include "TavikCLI/WordCommands.h"

#include "Dictionary/OfflineDictionary.h"
#include "TavikCLI/Book.h"
#include "TavikCLI/DictionaryFile.h"
#include "TavikCLI/JSONLine.h"
#include "TavikCLI/VocabularyReport.h"
#include "TavikTerminal/CommandLine.h"
#include "Text/Unicode.h"
#include "Vocabulary/VocabularyJSON.h"

#include <nlohmann/json.hpp>
#include <unistd.h>

#include <iostream>

namespace tavik {
namespace {

constexpr const char* exitCodes = "退出码：0 成功，2 生词本里没有这个词，1 出错。";

/// The saved word that the arguments mean; says so when there is none.
std::optional<VocabItem> findItem(const VocabularyStore& book, const std::string& dictionaryPath,
                                  const std::string& text) {
    auto id = findWord(book, nullptr, text);
    // Only for a form that is not saved itself.
    if (!id) id = findWord(book, openDictionaryIfAny(dictionaryPath).get(), text);
    auto item = id ? book.item(*id) : std::nullopt;
    if (!item) std::cerr << "生词本里没有“" << printable(text) << "”。\n";
    return item;
}

} // namespace

ShowCommand::ShowCommand(CLI::App& app)
    : Command(app, "show", "显示一个单词的释义、进度和遇到它的句子") {
    options().add_option("词", words, "生词本里的单词或短语")->required();
    addDictionaryOption(dictionaryPath);
    addJSONFlag(asJSON, "输出一行 JSON");
    options().footer(exitCodes);
}

int ShowCommand::run() const {
    return withBook([&](const VocabularyStore& book) {
        const auto item = findItem(book, dictionaryPath, phraseOf(words));
        if (!item) return exitNotFound;
        const auto encounters = book.encounters(item->word.id);
        if (asJSON) {
            const nlohmann::json json{
                {"word", item->word}, {"card", item->card}, {"encounters", encounters}};
            std::cout << jsonLine(json) << '\n';
            return exitOK;
        }
        const Terminal terminal = Terminal::of(STDOUT_FILENO);
        Report report(terminal);
        addWord(report, *item, encounters, {terminal, Calendar::current(), currentDate()});
        std::cout << report.finished();
        return exitOK;
    });
}

DeleteCommand::DeleteCommand(CLI::App& app)
    : Command(app, "delete", "从生词本删除一个单词，连同它的句子和进度") {
    options().add_option("词", words, "生词本里的单词或短语")->required();
    addDictionaryOption(dictionaryPath);
    options().footer(exitCodes);
}

int DeleteCommand::run() const {
    return withBook([&](VocabularyStore& book) {
        const auto item = findItem(book, dictionaryPath, phraseOf(words));
        if (!item) return exitNotFound;
        book.delete_(item->word.id);
        std::cout << "已从生词本删除 " << printable(item->word.headword) << "，连同 "
                  << item->encounterCount << " 个句子。\n";
        return exitOK;
    });
}

} // namespace tavik
