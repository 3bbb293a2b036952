#pragma once

#include "Ports/SpeechSynthesizer.h"

namespace tavik {

/// Stays silent, for a program that runs without a desktop.
class NullSpeechSynthesizer final : public SpeechSynthesizer {
public:
    void speak(const std::string&, const std::string&, double) override {}

    void stop() override {}

    bool isAvailable() const override { return false; }
};

} // namespace tavik
