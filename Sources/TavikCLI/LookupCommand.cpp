#include "TavikCLI/LookupCommand.h"

#include "Lookup/WordLookup.h"
#include "TavikCLI/DictionaryFile.h"
#include "TavikCLI/LookupReport.h"
#include "TavikTerminal/CommandLine.h"
#include "TavikTerminal/Terminal.h"
#include "Text/CharacterClasses.h"
#include "Text/Unicode.h"

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
    options().footer("几个词先合起来当作短语查；词典里没有这个短语时，逐个查。\n"
                     "退出码：0 都查到了，2 有没查到的，1 出错。");
}

int LookupCommand::run() const {
    const auto dictionary = openDictionary(dictionaryPath);
    if (!words.empty()) return lookUpArguments(*dictionary);
    if (isatty(STDIN_FILENO) == 1) std::cerr << "请输入要查的词，每行一个，按 Ctrl+D 结束。\n";
    return lookUpLines(*dictionary, std::cin);
}

int LookupCommand::lookUpArguments(const OfflineDictionary& dictionary) const {
    const std::string phrase = joined({words.begin(), words.end()}, " ");
    if (words.size() == 1 || lookUpWord(&dictionary, phrase).isWord)
        return lookUp(dictionary, phrase) ? exitOK : exitNotFound;
    bool allFound = true;
    for (const std::string& word : words)
        allFound = lookUp(dictionary, word) && allFound;
    return allFound ? exitOK : exitNotFound;
}

int LookupCommand::lookUpLines(const OfflineDictionary& dictionary, std::istream& input) const {
    bool allFound = true;
    for (std::string line; std::getline(input, line);)
        if (!trimmed(line, isWhiteSpace).empty()) allFound = lookUp(dictionary, line) && allFound;
    return allFound ? exitOK : exitNotFound;
}

bool LookupCommand::lookUp(const OfflineDictionary& dictionary,
                           const std::string& selection) const {
    const WordLookup lookup = lookUpWord(&dictionary, selection);
    const auto context = sentenceContext(lookup, sentence);
    if (asJSON)
        std::cout << lookupJSON(lookup, context) << '\n' << std::flush;
    else
        std::cout << lookupText(lookup, context, Terminal::of(STDOUT_FILENO)) << std::flush;
    return lookup.isWord;
}

} // namespace tavik
