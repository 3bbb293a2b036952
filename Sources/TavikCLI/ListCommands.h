#pragma once

#include "TavikCLI/Command.h"

#include <string>
#include <vector>

namespace tavik {

/// `list`: the saved words, all or those that match a search.
class ListCommand final : public Command {
public:
    explicit ListCommand(CLI::App& app);

    int run() const override;

private:
    std::vector<std::string> search;
    bool asJSON = false;
};

/// `due`: the words that are due now.
class DueCommand final : public Command {
public:
    explicit DueCommand(CLI::App& app);

    int run() const override;

private:
    int limit = 500;
    bool asJSON = false;
};

/// `stats`: how large the book is and what is coming.
class StatsCommand final : public Command {
public:
    explicit StatsCommand(CLI::App& app);

    int run() const override;

private:
    bool asJSON = false;
};

} // namespace tavik
