#pragma once

#include "Learning/Scheduler.h"
#include "TavikCLI/Command.h"

#include <memory>
#include <string>

namespace tavik {

/// `review`: the due words one by one, rated by keys.
class ReviewCommand final : public Command {
public:
    explicit ReviewCommand(CLI::App& app);

    int run() const override;

private:
    std::unique_ptr<Scheduler> scheduler() const;

    std::string schedulerName = "fsrs";
    double retention = 0.9;
    int limit = 500;
    std::string dictionaryPath;
};

} // namespace tavik
