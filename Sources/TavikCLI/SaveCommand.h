#pragma once

#include "TavikCLI/Command.h"

#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

namespace tavik {

class LookupService;
class VocabularyStore;

/// `save`: puts a word or phrase into the book, or one for each line of standard input.
class SaveCommand final : public Command {
public:
    explicit SaveCommand(CLI::App& app);

    int run() const override;

private:
    int saveLines(const LookupService& service, const VocabularyStore& book,
                  std::istream& input) const;
    int save(const LookupService& service, const VocabularyStore& book, std::string_view selection,
             std::string_view text) const;

    std::vector<std::string> words;
    std::string sentence;
    std::string meaning;
    std::string appName;
    std::string url;
    std::string dictionaryPath;
    bool asJSON = false;
};

} // namespace tavik
