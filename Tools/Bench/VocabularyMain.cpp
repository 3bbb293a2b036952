#include "BookOperations.h"
#include "SampleBook.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <exception>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

namespace {

int runCommandLine(int argc, char** argv) {
    CLI::App app("Measures the vocabulary store with books of several sizes.",
                 "tavik-bench-vocabulary");
    std::string work = "build/bench";
    std::vector<std::size_t> sizes{1000, 10000, 100000};
    app.add_option("--work", work, "Directory for the books")->capture_default_str();
    app.add_option("--words", sizes, "Words of each book")
        ->check(CLI::Range(std::size_t{1000}, tavik::SampleBook::maxWords))
        ->capture_default_str();
    CLI11_PARSE(app, argc, argv);
    std::filesystem::create_directories(work);
    for (const std::size_t words : sizes)
        tavik::reportBookOperations(work, words);
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    try {
        return runCommandLine(argc, argv);
    } catch (const std::exception& error) {
        std::cerr << "tavik-bench-vocabulary: " << error.what() << '\n';
        return 1;
    }
}
