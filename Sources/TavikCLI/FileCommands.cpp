#include "TavikCLI/FileCommands.h"

#include "Base/AsideFile.h"
#include "TavikCLI/Book.h"
#include "TavikTerminal/CommandLine.h"
#include "Text/Unicode.h"
#include "Vocabulary/BookFailure.h"
#include "Vocabulary/VocabularyBackup.h"
#include "Vocabulary/VocabularyExport.h"

#include <filesystem>
#include <iostream>
#include <stdexcept>
#include <system_error>

namespace tavik {
namespace {

namespace fs = std::filesystem;

std::string summary(const BookCounts& counts) {
    return std::to_string(counts.words) + " 个单词、" + std::to_string(counts.encounters)
           + " 个句子、" + std::to_string(counts.reviews) + " 次复习";
}

} // namespace

ExportCommand::ExportCommand(CLI::App& app)
    : Command(app, "export", "导出生词本，供表格、Anki 或其他程序使用") {
    options().add_option("文件", file, "写到这个文件；省略时写到标准输出");
    options()
        .add_option("--format", format,
                    "csv（表格，默认）、json（全部单词、句子和进度）或 anki（Anki 的文本导入）")
        ->option_text("格式")
        ->check([](const std::string& name) {
            return exportFormat(name) ? "" : "只能是 csv、json 或 anki";
        });
    options().add_flag("--force", force, "文件已经存在时覆盖它");
    options().footer("表格里以 = + - @ 开头的格子前面会加一个 '，以免被当作公式。\n"
                     "Anki：在“文件—导入”里选择导出的文件。");
}

int ExportCommand::run() const {
    return withBook([&](const VocabularyStore& book) {
        const auto words = wordHistories(book);
        const std::string text =
            exportedBook(words, exportFormat(format).value(), Calendar::current());
        if (file.empty()) {
            std::cout << text;
            return exitOK;
        }
        requireOutsideBook(file, bookPath());
        std::error_code ignored;
        if (!force && fs::exists(file, ignored))
            throw FileError(file + " 已经存在，请换一个文件名，或者加上 --force 覆盖它");
        replaceFile(file, text);
        std::cout << "已导出 " << words.size() << " 个单词到 " << printable(file) << "。\n";
        return exitOK;
    });
}

BackupCommand::BackupCommand(CLI::App& app)
    : Command(app, "backup", "备份生词本；别的程序正在使用它也没有关系") {
    options().add_option("文件", file, "备份写到这个文件")->required();
    options().add_flag("--force", force, "文件已经存在时覆盖它");
    options().footer("备份写成后会重新打开，检查一遍。");
}

int BackupCommand::run() const {
    return withBook([&](const VocabularyStore& book) {
        const auto counts =
            backUpBook(book, bookPath(), file, force ? Overwrite::yes : Overwrite::no);
        std::cout << "已备份到 " << printable(file) << "：" << summary(counts) << "。\n";
        return exitOK;
    });
}

RestoreCommand::RestoreCommand(CLI::App& app)
    : Command(app, "restore", "用备份恢复生词本，原来的另外留存") {
    options().add_option("文件", file, "backup 写成的文件")->required();
    options().footer("先检查备份是否完好；有问题就不动现在的生词本。");
}

int RestoreCommand::run() const {
    const fs::path book = bookPath();
    try {
        const auto [counts, kept] = restoreBook(file, book, currentDate());
        std::cout << "已恢复：" << summary(counts) << "。\n";
        if (kept) std::cout << "原来的生词本留存在 " << printable(kept->string()) << "。\n";
        return exitOK;
    } catch (const SQLiteDB::Error& error) {
        throw std::runtime_error(bookFailure(book.string(), error));
    }
}

} // namespace tavik
