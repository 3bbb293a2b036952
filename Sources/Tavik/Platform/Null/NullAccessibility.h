#pragma once

#include "Ports/Accessibility.h"

namespace tavik {

/// Where no application tells anything.
class NullAccessibility final : public Accessibility {
public:
    std::unique_ptr<AccessibilitySession> startSession(const std::optional<FrontApplication>&,
                                                       std::chrono::milliseconds) override {
        return std::make_unique<Session>();
    }

private:
    class Session final : public AccessibilitySession {
    public:
        ElementRef systemWideElement() override { return nullptr; }

        ElementRef applicationElement(std::int64_t) override { return nullptr; }

        bool hasTimedOut() const override { return false; }
    };
};

} // namespace tavik
