#include "TavikCLI/LookupCommand.h"
#include "TavikTerminal/CommandLine.h"

int main(int argc, char** argv) {
    CLI::App app("Tavik 命令行：查英文单词和短语", "tavik-cli");
    tavik::speakChinese(app);
    app.require_subcommand(1);
    tavik::LookupCommand lookup(app);
    return tavik::runCommandLine(app, argc, argv, [&] { return lookup.run(); });
}
