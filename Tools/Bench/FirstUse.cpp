#include "FirstUse.h"

#include "ChildProcess.h"
#include "Dictionary/OfflineDictionary.h"
#include "Samples.h"
#include "WordLists.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <stdexcept>

namespace tavik {
namespace {

constexpr std::size_t processes = 41;
constexpr int exampleLimit = 3;

constexpr std::array<const char*, 5> steps{"open", "verify", "first entry", "first lemma",
                                           "first examples"};

/// Nothing happens where the system will not, as on a file that another program has mapped.
void dropFromPageCache(const std::string& file) {
    const int descriptor = open(file.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) return;
    posix_fadvise(descriptor, 0, 0, POSIX_FADV_DONTNEED);
    close(descriptor);
}

std::vector<Samples> measuredSteps(const std::string& dictionary,
                                   const std::vector<std::string>& words,
                                   const std::string& directory, bool isCold) {
    const std::string output = directory + "/first-use.txt";
    std::vector<Samples> samples(steps.size());
    for (const std::string& word : spreadSample(words, processes)) {
        if (isCold) dropFromPageCache(dictionary);
        run({{ownProgram(), "first-use", "--dictionary", dictionary, "--", word},
             "/dev/null",
             output});
        std::ifstream line(output);
        for (Samples& step : samples) {
            double microseconds = 0;
            if (!(line >> microseconds)) throw std::runtime_error("a first lookup failed");
            step.add(microseconds);
        }
    }
    return samples;
}

} // namespace

void runFirstUse(const std::string& dictionary, const std::string& word) {
    std::vector<double> times;
    times.reserve(steps.size());
    Stopwatch stopwatch;
    const auto lap = [&] {
        times.push_back(stopwatch.microseconds());
        stopwatch = Stopwatch();
    };
    const OfflineDictionary opened(dictionary);
    lap();
    opened.verify();
    lap();
    opened.entry(word);
    lap();
    const std::string lemma = opened.lemma(word);
    lap();
    opened.examples(lemma, exampleLimit);
    lap();
    for (const double time : times)
        std::printf("%.1f ", time);
    std::printf("\n");
}

void reportFirstUse(const std::string& dictionary, const std::vector<std::string>& words,
                    const std::string& directory) {
    const auto warm = measuredSteps(dictionary, words, directory, false);
    const auto cold = measuredSteps(dictionary, words, directory, true);
    printHeading("First use in a fresh process, µs", "   median       max      cold  cold max");
    std::size_t step = 0;
    for (const char* const title : steps) {
        std::printf("%-39s%9.0f %9.0f %9.0f %9.0f\n", title, warm[step].median(), warm[step].max(),
                    cold[step].median(), cold[step].max());
        ++step;
    }
}

} // namespace tavik
