#pragma once

#include "Ports/Pasteboard.h"
#include "Ports/Processes.h"

#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace tavik::test {

/// A clipboard, and an application that copies to it what a test has given.
class FakePasteboard final : public Pasteboard {
public:
    std::unique_ptr<PasteboardLoan> lend(const FrontApplication& application) override {
        ask("lend(" + application.bundleIdentifier.value_or("?") + ')');
        return canBeLent ? std::make_unique<Loan>(*this) : nullptr;
    }

    std::optional<std::string> selectedString(const FrontApplication& application) override {
        ask("selection(" + application.bundleIdentifier.value_or("?") + ')');
        return selection;
    }

    bool canBeLent = true;
    bool takesKeys = true;
    /// What a copy puts there.
    std::optional<std::string> copied;
    std::optional<std::string> selection;
    /// Every question, with what is asked of a loan.
    std::vector<std::string> calls;
    /// The question that fails.
    std::string failing;

private:
    void ask(const std::string& question) {
        calls.push_back(question);
        if (question == failing) throw std::runtime_error(question);
    }

    class Loan final : public PasteboardLoan {
    public:
        explicit Loan(FakePasteboard& board) : board(board) {}

        ~Loan() override { board.calls.emplace_back("end"); }

        Loan(const Loan&) = delete;
        Loan& operator=(const Loan&) = delete;

        bool copy() override {
            board.ask("copy");
            return board.takesKeys;
        }

        bool awaitChange(std::chrono::milliseconds limit) override {
            board.ask("await(" + std::to_string(limit.count()) + ')');
            return board.copied.has_value();
        }

        std::optional<std::string> string() override {
            board.ask("string");
            return board.copied;
        }

    private:
        FakePasteboard& board;
    };
};

/// Programs without terminals, unless a test says something else.
class FakeProcesses final : public Processes {
public:
    bool mayHoldTerminal(std::int64_t /*processIdentifier*/) override { return holdsTerminal; }

    bool isStopped(std::int64_t /*processIdentifier*/) override { return isStopping; }

    std::vector<std::string> arguments(std::int64_t processIdentifier) override {
        return commands[processIdentifier];
    }

    std::optional<Date> startTime(std::int64_t processIdentifier) override {
        const auto found = startTimes.find(processIdentifier);
        return found == startTimes.end() ? std::nullopt : std::optional(found->second);
    }

    bool holdsTerminal = false;
    bool isStopping = false;
    std::map<std::int64_t, std::vector<std::string>> commands;
    std::map<std::int64_t, Date> startTimes;
};

} // namespace tavik::test
