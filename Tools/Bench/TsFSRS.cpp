#include "TsFSRS.h"

#include "ChildProcess.h"

#include <fstream>
#include <system_error>
#include <utility>

namespace tavik {

TsFSRS::TsFSRS(std::filesystem::path script, std::filesystem::path package,
               std::filesystem::path work)
    : script(std::move(script)), package(std::move(package)), work(std::move(work)) {}

bool TsFSRS::isThere() {
    try {
        run({{"node", "--version"}});
        return true;
    } catch (const std::system_error&) {
        return false;
    }
}

std::filesystem::path TsFSRS::output(std::vector<std::string> arguments) const {
    Command command{{"node", script, package}, "/dev/null", work / "ts-fsrs.txt"};
    command.arguments.insert(command.arguments.end(), arguments.begin(), arguments.end());
    run(command);
    return command.output;
}

void TsFSRS::measure(const std::string& function, const std::string& scheduler,
                     const std::filesystem::path& mix, Samples& samples) const {
    std::ifstream passes(output({"measure", function, scheduler, mix}));
    for (double nanoseconds = 0; passes >> nanoseconds;)
        samples.add(nanoseconds);
}

std::vector<TsFSRS::Step> TsFSRS::follow(std::span<const Rating> ratings) const {
    std::vector<std::string> arguments{"follow"};
    for (const Rating rating : ratings)
        arguments.push_back(std::to_string(rawValue(rating)));
    std::ifstream lines(output(arguments));
    std::vector<Step> steps;
    for (Step step; lines >> step.stability >> step.days;)
        steps.push_back(step);
    return steps;
}

} // namespace tavik
