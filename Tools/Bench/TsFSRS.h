#pragma once

#include "Learning/Card.h"
#include "Samples.h"

#include <filesystem>
#include <span>
#include <string>
#include <vector>

namespace tavik {

/// The npm package ts-fsrs, run by node in a process of its own for each call. All but `isThere`
/// throw a runtime error when node fails.
class TsFSRS {
public:
    /// `script` is ts-fsrs.mjs, `package` the unpacked package, `work` for scratch files.
    TsFSRS(std::filesystem::path script, std::filesystem::path package, std::filesystem::path work);

    /// Whether there is a node to run it.
    static bool isThere();

    /// Adds the nanoseconds per call of several passes over the mix, after a long warm-up.
    /// `function` is "next" or "repeat", `scheduler` "short" (with short-term steps) or "long".
    void measure(const std::string& function, const std::string& scheduler,
                 const std::filesystem::path& mix, Samples& samples) const;

    struct Step {
        double stability = 0;
        /// 0 for a step of minutes.
        double days = 0;
    };

    /// What becomes of a new card that is reviewed whenever it is due.
    std::vector<Step> follow(std::span<const Rating> ratings) const;

private:
    std::filesystem::path output(std::vector<std::string> arguments) const;

    std::filesystem::path script;
    std::filesystem::path package;
    std::filesystem::path work;
};

} // namespace tavik
