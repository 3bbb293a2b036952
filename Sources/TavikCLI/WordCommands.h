#pragma once

#include "TavikCLI/Command.h"

#include <string>
#include <vector>

namespace tavik {

/// `show`: everything the book knows of a word.
class ShowCommand final : public Command {
public:
    explicit ShowCommand(CLI::App& app);

    int run() const override;

private:
    std::vector<std::string> words;
    std::string dictionaryPath;
    bool asJSON = false;
};

/// `delete`: removes a word from the book.
class DeleteCommand final : public Command {
public:
    explicit DeleteCommand(CLI::App& app);

    int run() const override;

private:
    std::vector<std::string> words;
    std::string dictionaryPath;
};

} // namespace tavik
