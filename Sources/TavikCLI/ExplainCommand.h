#pragma once

#include "TavikCLI/Command.h"
#include "TavikCLI/ModelOptions.h"

#include <string>
#include <vector>

namespace tavik {

/// `explain`: what a word means in its sentence, from a language model.
class ExplainCommand final : public Command {
public:
    explicit ExplainCommand(CLI::App& app);

    int run() const override;

private:
    std::vector<std::string> words;
    std::string sentence;
    std::string dictionaryPath;
    bool asJSON = false;
    ModelOptions model;
};

} // namespace tavik
