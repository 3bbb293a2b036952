#include "TavikTerminal/CommandLine.h"

#include "Text/Unicode.h"

#include <exception>
#include <iostream>
#include <memory>
#include <string>

namespace tavik {
namespace {

constexpr std::size_t descriptionColumn = 30;
constexpr const char* optionGroup = "选项";

/// Help in two columns, measured in terminal columns rather than bytes.
class ChineseFormatter final : public CLI::Formatter {
public:
    ChineseFormatter() {
        label("Usage", "用法");
        label("OPTIONS", "选项");
        label("SUBCOMMAND", "命令");
        label("SUBCOMMANDS", "命令");
        label("Positionals", "参数");
        label("REQUIRED", "（必需）");
    }

    std::string make_option(const CLI::Option* option, bool isPositional) const override {
        std::string name = make_option_name(option, isPositional);
        if (!isPositional) name += make_option_opts(option);
        return row(name, make_option_desc(option));
    }

    std::string make_subcommand(const CLI::App* command) const override {
        return row(command->get_display_name(true), command->get_description());
    }

private:
    static std::string row(const std::string& name, const std::string& description) {
        std::string line = "  " + name;
        const std::size_t width = displayWidth(line);
        if (width + 2 > descriptionColumn)
            line += '\n' + std::string(descriptionColumn, ' ');
        else
            line.append(descriptionColumn - width, ' ');
        return line + description + '\n';
    }
};

/// The option or argument that an error of CLI11 speaks of: its message begins with the name.
std::string subject(const CLI::ParseError& error) {
    const std::string message = error.what();
    return message.substr(0, message.find_first_of(": "));
}

const CLI::App& chosenCommand(const CLI::App& app) {
    const auto chosen = app.get_subcommands();
    return chosen.empty() ? app : *chosen.front();
}

std::string explanation(const CLI::App& app, const CLI::ParseError& error) {
    if (dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr)
        return "不认识“" + CLI::detail::join(app.remaining(true), " ") + "”";
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr)
        return subject(error) + " 后面的值不对：缺少，或者给多了";
    if (dynamic_cast<const CLI::ConversionError*>(&error) != nullptr)
        return "命令行里有一个值的类型不对";
    if (dynamic_cast<const CLI::RequiredError*>(&error) != nullptr) {
        const bool hasCommand = &chosenCommand(app) != &app || subject(error).rfind("--", 0) == 0;
        return hasCommand ? "缺少 " + subject(error) : "没有说要做什么：请给出一个命令";
    }
    if (dynamic_cast<const CLI::ValidationError*>(&error) != nullptr)
        return replacingAll(error.what(), ": ", " ");
    return "命令行有误";
}

int reportParseError(const CLI::App& app, const CLI::ParseError& error) {
    if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
        app.exit(error);
        return std::cout.flush() ? exitOK : exitError;
    }
    const CLI::App& command = chosenCommand(app);
    const std::string name =
        &command == &app ? app.get_name() : app.get_name() + ' ' + command.get_name();
    std::cerr << app.get_name() << "：" << printable(explanation(app, error)) << "。用法见 " << name
              << " --help\n";
    return exitError;
}

} // namespace

void speakChinese(CLI::App& app) {
    app.formatter(std::make_shared<ChineseFormatter>());
    app.option_defaults()->group(optionGroup);
    app.set_help_flag("-h,--help", "显示这份说明")->group(optionGroup);
    app.set_version_flag("--version", app.get_name() + " " TAVIK_VERSION, "显示版本")
        ->group(optionGroup);
}

CLI::App* addCommand(CLI::App& app, const std::string& name, const std::string& description) {
    CLI::App* command = app.add_subcommand(name, description);
    command->group("命令");
    command->get_help_ptr()->group(optionGroup);
    return command;
}

CLI::Validator within(double low, double high, const std::string& explanation) {
    const auto check = [=](const std::string& text) {
        double value = 0;
        const bool isNumber = CLI::detail::lexical_cast(text, value);
        return isNumber && value >= low && value <= high ? std::string() : explanation;
    };
    return {check, ""};
}

int runCommandLine(CLI::App& app, int argc, char** argv, const std::function<int()>& run) {
    try {
        app.parse(argc, argv);
        const int code = run();
        if (std::cout.flush()) return code;
        std::cerr << app.get_name() << "：结果写不出去（磁盘满了，或者输出已经关闭）\n";
    } catch (const CLI::ParseError& error) {
        return reportParseError(app, error);
    } catch (const std::exception& error) {
        std::cerr << app.get_name() << "：" << printable(error.what()) << '\n';
    }
    return exitError;
}

} // namespace tavik
