#pragma once

#include "TavikCLI/Command.h"

#include <iosfwd>
#include <string>
#include <vector>

namespace tavik {

class OfflineDictionary;

/// `lookup`: words and phrases from the command line or, without any, lines of standard input.
class LookupCommand final : public Command {
public:
    explicit LookupCommand(CLI::App& app);

    /// `exitOK` when everything was found, `exitNotFound` when something was not.
    int run() const override;

private:
    int lookUpArguments(const OfflineDictionary& dictionary) const;
    int lookUpLines(const OfflineDictionary& dictionary, std::istream& input) const;
    /// Looks one selection up and prints what was found; whether there was an entry.
    bool lookUp(const OfflineDictionary& dictionary, const std::string& selection) const;

    std::vector<std::string> words;
    std::string sentence;
    std::string dictionaryPath;
    bool asJSON = false;
};

} // namespace tavik
