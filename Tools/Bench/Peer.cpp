#include "Peer.h"

#include "ChildProcess.h"
#include "InProcess.h"
#include "Samples.h"
#include "WordLists.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <system_error>
#include <unordered_set>

namespace tavik {
namespace {

constexpr std::size_t singleWords = 200;
constexpr std::size_t singleRounds = 3;
constexpr std::size_t manyWords = 5000;
constexpr std::size_t manyRounds = 5;

/// How the programs are called.
class Programs {
public:
    Programs(const std::string& dictionary, const std::filesystem::path& work)
        : cli{{ownProgram().parent_path() / "tavik-cli", "lookup", "--dictionary", dictionary}},
          sdcv{{"sdcv", "-n", "-x", "-e", "--utf8-input", "--utf8-output", "--data-dir",
                work / "stardict", "--"}} {
        // So that sdcv neither reads nor writes anything of the person who runs this.
        sdcv.environment = {"HOME=" + work.string(), "LC_ALL=C.UTF-8"};
    }

    Command cliWord(const std::string& word) const {
        Command command = cli;
        command.arguments.insert(command.arguments.end(), {"--", word});
        return command;
    }

    Command cliLines(const std::filesystem::path& input) const {
        Command command = cli;
        command.input = input;
        return command;
    }

    Command cliLinesAsJSON(const std::filesystem::path& input) const {
        Command command = cliLines(input);
        command.arguments.emplace_back("--json");
        return command;
    }

    Command sdcvWords(const std::vector<std::string>& words) const {
        Command command = sdcv;
        command.arguments.insert(command.arguments.end(), words.begin(), words.end());
        return command;
    }

private:
    Command cli;
    Command sdcv;
};

bool hasSdcv() {
    try {
        run({{"sdcv", "--version"}});
        return true;
    } catch (const std::system_error&) {
        return false;
    }
}

/// Whether sdcv takes the word as it is: '/', '|', '*' and '?' mean other searches to it.
bool isPlain(const std::string& word) {
    return std::all_of(word.begin(), word.end(), [](char unit) {
        return (unit >= 'a' && unit <= 'z') || (unit >= 'A' && unit <= 'Z') || unit == '-'
               || unit == '\'';
    });
}

std::size_t cliHits(const std::filesystem::path& output) {
    const auto lines = readLines(output);
    return static_cast<std::size_t>(
        std::count_if(lines.begin(), lines.end(), [](const std::string& line) {
            return line.find("\"isWord\":true") != std::string::npos;
        }));
}

/// sdcv puts "-->" and the headword above each article.
std::size_t sdcvHits(const std::filesystem::path& output, const std::vector<std::string>& words) {
    const auto lines = readLines(output);
    const std::unordered_set<std::string> shown(lines.begin(), lines.end());
    return static_cast<std::size_t>(
        std::count_if(words.begin(), words.end(),
                      [&](const std::string& word) { return shown.contains("-->" + word); }));
}

/// Microseconds of one program.
struct Cost {
    Samples time;
    Samples processorTime;

    void add(const CommandResult& result) {
        time.add(result.microseconds);
        processorTime.add(result.processorMicroseconds);
    }
};

struct Costs {
    Cost cli;
    Cost sdcv;
    /// Of a program that does nothing.
    Cost floor;
};

/// The programs take turns, so that what disturbs the machine for a moment hits them all.
Costs measuredSingleWords(const Programs& programs, const std::vector<std::string>& words) {
    Costs costs;
    for (std::size_t round = 0; round < singleRounds; ++round)
        for (const std::string& word : words) {
            costs.cli.add(run(programs.cliWord(word)));
            costs.sdcv.add(run(programs.sdcvWords({word})));
            costs.floor.add(run({{"/bin/true"}}));
        }
    return costs;
}

Costs measuredManyWords(const Programs& programs, const std::vector<std::string>& words,
                        const std::filesystem::path& input) {
    Costs costs;
    for (std::size_t round = 0; round < manyRounds; ++round) {
        costs.cli.add(run(programs.cliLines(input)));
        costs.sdcv.add(run(programs.sdcvWords(words)));
    }
    return costs;
}

std::string rounded(double value) {
    return std::to_string(std::llround(value));
}

void printRow(const char* title, double own, double peer) {
    std::printf("%-39s%10.1f %10.1f %10.2f\n", title, own, peer, own / peer);
}

void printHits(const Programs& programs, const std::vector<std::string>& words,
               const std::filesystem::path& input, const std::filesystem::path& work) {
    Command cli = programs.cliLinesAsJSON(input);
    Command sdcv = programs.sdcvWords(words);
    cli.output = work / "cli.txt";
    sdcv.output = work / "sdcv.txt";
    run(cli);
    run(sdcv);
    std::printf("%-39s%10zu %10zu\n", ("words found of " + std::to_string(words.size())).c_str(),
                cliHits(cli.output), sdcvHits(sdcv.output, words));
}

void printSingleWords(const Costs& costs) {
    const double floor = costs.floor.time.median();
    const double processorFloor = costs.floor.processorTime.median();
    const double own = costs.cli.time.median();
    const double peer = costs.sdcv.time.median();
    printRow("one word, whole process, µs", own, peer);
    printRow(("  beyond " + rounded(floor) + " for a process at all").c_str(), own - floor,
             peer - floor);
    printRow(("  processor time beyond " + rounded(processorFloor)).c_str(),
             costs.cli.processorTime.median() - processorFloor,
             costs.sdcv.processorTime.median() - processorFloor);
}

/// What each word costs beyond the first.
double furtherCost(const Samples& oneWord, const Samples& manyWords, double words) {
    return (manyWords.median() - oneWord.median()) / (words - 1);
}

/// `entry` is what one call of `OfflineDictionary::entry` costs.
void printManyWords(const Costs& single, const Costs& all, double entry, double words) {
    const double peerFurther = furtherCost(single.sdcv.time, all.sdcv.time, words);
    printRow("many words in one process, µs per word", all.cli.time.median() / words,
             all.sdcv.time.median() / words);
    printRow("  each word after the first", furtherCost(single.cli.time, all.cli.time, words),
             peerFurther);
    printRow("    of it processor time",
             furtherCost(single.cli.processorTime, all.cli.processorTime, words),
             furtherCost(single.sdcv.processorTime, all.sdcv.processorTime, words));
    printRow("  entry() in process against sdcv's", entry, peerFurther);
}

} // namespace

void reportPeer(const std::string& dictionary, const std::vector<std::string>& words,
                const std::filesystem::path& work) {
    if (!hasSdcv()) {
        std::printf("\nsdcv is not installed; nothing to compare with.\n");
        return;
    }
    std::vector<std::string> plain;
    std::copy_if(words.begin(), words.end(), std::back_inserter(plain), isPlain);
    const auto many = spreadSample(plain, manyWords);
    const auto few = spreadSample(many, singleWords);
    const auto input = work / "many.txt";
    writeLines(input, many);

    const Programs programs(dictionary, work);
    printHeading("Beside sdcv", " tavik-cli       sdcv      ratio");
    printHits(programs, many, input, work);
    const Costs single = measuredSingleWords(programs, few);
    const Costs all = measuredManyWords(programs, many, input);
    printSingleWords(single);
    printManyWords(single, all, meanEntryMicroseconds(dictionary, many),
                   static_cast<double>(many.size()));
    printRow("peak memory, one word, MB", peakMegabytes(programs.cliWord(few.front())),
             peakMegabytes(programs.sdcvWords({few.front()})));
    printRow("peak memory, many words, MB", peakMegabytes(programs.cliLines(input)),
             peakMegabytes(programs.sdcvWords(many)));
}

} // namespace tavik
