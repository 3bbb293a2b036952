#pragma once

#include "Lookup/VideoLinks.h"
#include "TavikCLI/Command.h"
#include "TavikCLI/ModelOptions.h"

#include <iosfwd>
#include <string>
#include <vector>

namespace tavik {

class Explainer;
class LookupService;

/// `lookup`: words and phrases from the command line or, without any, lines of standard input.
class LookupCommand final : public Command {
public:
    explicit LookupCommand(CLI::App& app);

    /// `exitOK` when everything was found, `exitNotFound` when something was not.
    int run() const override;

private:
    Accent accent() const;
    int lookUpArguments(const LookupService& service, Explainer& explainer) const;
    int lookUpLines(const LookupService& service, Explainer& explainer, std::istream& input) const;
    /// Looks one selection up and prints what was found; the exit code.
    int lookUp(const LookupService& service, Explainer& explainer,
               const std::string& selection) const;

    std::vector<std::string> words;
    std::string sentence;
    std::string dictionaryPath;
    bool asJSON = false;
    bool explains = false;
    bool showsVideos = false;
    std::string accentName = "us";
    ModelOptions model;
};

} // namespace tavik
