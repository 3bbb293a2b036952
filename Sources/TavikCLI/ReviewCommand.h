#pragma once

#include "Learning/Scheduler.h"
#include "TavikCLI/Command.h"

#include <memory>
#include <optional>
#include <string>

namespace tavik {

/// `review`: the due words one by one, rated by keys.
class ReviewCommand final : public Command {
public:
    explicit ReviewCommand(CLI::App& app);

    int run() const override;

private:
    std::unique_ptr<Scheduler> scheduler() const;

    /// Empty for what the preferences say.
    std::string schedulerName;
    /// Nothing for what the preferences say.
    std::optional<double> retention;
    int limit = 500;
    std::string dictionaryPath;
};

} // namespace tavik
