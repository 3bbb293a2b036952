#include "TavikCLI/Command.h"

#include "TavikTerminal/CommandLine.h"
#include "Text/Unicode.h"

namespace tavik {

std::string phraseOf(const std::vector<std::string>& words) {
    return joined({words.begin(), words.end()}, " ");
}

Command::Command(CLI::App& app, const std::string& name, const std::string& description)
    : command(addCommand(app, name, description)) {}

void Command::addJSONFlag(bool& asJSON, const std::string& description) {
    command->add_flag("--json", asJSON, description);
}

void Command::addDictionaryOption(std::string& path) {
    command->add_option("--dictionary", path, "改用这个词典文件")->option_text("文件");
}

} // namespace tavik
