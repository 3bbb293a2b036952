#pragma once

#include "Ports/SpeechSynthesizer.h"

#include <string>

namespace tavik {

/// Says English words and sentences as an American would, a little slower than usual.
class Speech {
public:
    /// `synthesizer` must outlive it.
    explicit Speech(SpeechSynthesizer& synthesizer) : synthesizer(synthesizer) {}

    /// Stops what is being said and says `text`.
    void speak(const std::string& text) {
        synthesizer.stop();
        synthesizer.speak(text, "en-US", 0.9);
    }

    void stop() { synthesizer.stop(); }

    /// False once speaking was tried and failed.
    bool isAvailable() const { return synthesizer.isAvailable(); }

private:
    SpeechSynthesizer& synthesizer;
};

} // namespace tavik
