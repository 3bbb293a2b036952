#pragma once

#include <string>

namespace tavik {

/// Says text aloud. Every call is made on the main thread and returns at once; what cannot be said
/// stays silent.
class SpeechSynthesizer {
public:
    virtual ~SpeechSynthesizer() = default;

    /// Stops what is being said and says `text` in a voice of `language`, such as "en-US", at
    /// `rate` times the usual speed.
    virtual void speak(const std::string& text, const std::string& language, double rate) = 0;

    virtual void stop() = 0;

    /// False once speaking was tried and failed, until it works again.
    virtual bool isAvailable() const = 0;
};

} // namespace tavik
