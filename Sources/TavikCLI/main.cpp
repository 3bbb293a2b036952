#include "Base/DataDirectory.h"
#include "TavikCLI/ExplainCommand.h"
#include "TavikCLI/FileCommands.h"
#include "TavikCLI/ListCommands.h"
#include "TavikCLI/LookupCommand.h"
#include "TavikCLI/ReviewCommand.h"
#include "TavikCLI/SaveCommand.h"
#include "TavikCLI/WordCommands.h"
#include "TavikTerminal/CommandLine.h"

#include <memory>
#include <vector>

namespace {

using Commands = std::vector<std::unique_ptr<tavik::Command>>;

template<typename... Kinds>
Commands makeCommands(CLI::App& app) {
    Commands commands;
    (commands.push_back(std::make_unique<Kinds>(app)), ...);
    return commands;
}

int runChosen(const Commands& commands) {
    for (const auto& command : commands)
        if (command->isChosen()) return command->run();
    return tavik::exitError;
}

} // namespace

int main(int argc, char** argv) {
    tavik::keepFilesPrivate();
    CLI::App app("Tavik 命令行：查词、生词本和复习", "tavik-cli");
    tavik::speakChinese(app);
    app.footer("生词本在 ~/.local/share/Tavik，环境变量 TAVIK_DATA_DIR 可以指定别的目录。");
    app.require_subcommand(1);
    const auto commands =
        makeCommands<tavik::LookupCommand, tavik::ExplainCommand, tavik::SaveCommand,
                     tavik::ListCommand, tavik::ShowCommand, tavik::DueCommand,
                     tavik::ReviewCommand, tavik::DeleteCommand, tavik::StatsCommand,
                     tavik::ExportCommand, tavik::BackupCommand, tavik::RestoreCommand>(app);
    return tavik::runCommandLine(app, argc, argv, [&] { return runChosen(commands); });
}
