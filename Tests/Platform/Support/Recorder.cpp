#include "Platform/Support/Recorder.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <thread>

namespace tavik::test {
namespace {

using std::chrono::milliseconds;

constexpr std::size_t samplesPerSecond = 8000;
/// Of a sample; speech is in the thousands, and silence is 0.
constexpr int quiet = 100;

milliseconds timeOf(std::size_t samples) {
    return milliseconds(samples * 1000 / samplesPerSecond);
}

std::vector<std::int16_t> samplesIn(const std::filesystem::path& file) {
    const std::string bytes = readFile(file);
    std::vector<std::int16_t> samples(bytes.size() / sizeof(std::int16_t));
    if (!samples.empty())
        std::memcpy(samples.data(), bytes.data(), samples.size() * sizeof(std::int16_t));
    return samples;
}

/// The samples with the first and the last sound, and behind the last; all equal if there is none.
struct Sound {
    explicit Sound(const std::filesystem::path& file) {
        const std::vector<std::int16_t> samples = samplesIn(file);
        total = samples.size();
        for (std::size_t at = 0; at < total; ++at) {
            if (std::abs(samples[at]) < quiet) continue;
            if (end == 0) start = at;
            end = at + 1;
        }
    }

    std::size_t start = 0;
    std::size_t end = 0;
    std::size_t total = 0;
};

} // namespace

Recorder::Recorder()
    : recorder({"parec", "-d", "tavik.monitor", "--raw", "--format=s16le", "--channels=1",
                "--rate=" + std::to_string(samplesPerSecond), "--latency-msec=10"},
               directory.file("sound")) {
    for (int attempt = 0; length() == milliseconds(0); ++attempt) {
        if (attempt == 500) throw std::runtime_error("nothing is recorded");
        std::this_thread::sleep_for(milliseconds(10));
    }
}

milliseconds Recorder::length() const {
    return timeOf(samplesIn(directory.file("sound")).size());
}

milliseconds Recorder::soundLength() const {
    const Sound sound(directory.file("sound"));
    return timeOf(sound.end - sound.start);
}

milliseconds Recorder::silenceAtEnd() const {
    const Sound sound(directory.file("sound"));
    return timeOf(sound.total - sound.end);
}

} // namespace tavik::test
