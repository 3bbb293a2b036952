#include "SchedulerSpeed.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <exception>
#include <filesystem>
#include <iostream>
#include <string>

namespace {

int runCommandLine(int argc, char** argv) {
    CLI::App app("Measures the schedulers, by themselves and beside ts-fsrs.",
                 "tavik-bench-learning");
    std::string package = "build/data/ts-fsrs";
    std::string script = "Tools/Bench/ts-fsrs.mjs";
    std::string work = "build/bench";
    app.add_option("--ts-fsrs", package, "Unpacked npm package ts-fsrs")->capture_default_str();
    app.add_option("--script", script, "The script that runs it")->capture_default_str();
    app.add_option("--work", work, "Directory for scratch files")->capture_default_str();
    CLI11_PARSE(app, argc, argv);
    std::filesystem::create_directories(work);
    const tavik::TsFSRS peer(script, package, work);
    if (!tavik::TsFSRS::isThere()) {
        tavik::reportSchedulerSpeed(nullptr, work);
        std::printf("\nnode is not installed; nothing to compare with.\n");
        return 0;
    }
    tavik::reportSchedulerSpeed(&peer, work);
    tavik::reportAgreement(peer);
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    try {
        return runCommandLine(argc, argv);
    } catch (const std::exception& error) {
        std::cerr << "tavik-bench-learning: " << error.what() << '\n';
        return 1;
    }
}
