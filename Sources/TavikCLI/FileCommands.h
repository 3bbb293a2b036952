#pragma once

#include "TavikCLI/Command.h"

#include <string>

namespace tavik {

/// `export`: the book for other programs.
class ExportCommand final : public Command {
public:
    explicit ExportCommand(CLI::App& app);

    int run() const override;

private:
    std::string format = "csv";
    std::string file;
    bool force = false;
};

/// `backup`: a checked copy of the book.
class BackupCommand final : public Command {
public:
    explicit BackupCommand(CLI::App& app);

    int run() const override;

private:
    std::string file;
    bool force = false;
};

/// `restore`: a backup becomes the book.
class RestoreCommand final : public Command {
public:
    explicit RestoreCommand(CLI::App& app);

    int run() const override;

private:
    std::string file;
};

} // namespace tavik
