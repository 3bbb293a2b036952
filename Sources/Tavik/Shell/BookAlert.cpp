#include "Shell/BookAlert.h"

#include "Base/AsideFile.h"
#include "Environment/AppEnvironment.h"
#include "Vocabulary/BookFailure.h"
#include "Vocabulary/EmptiedBook.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QString>
#include <filesystem>
#include <string>

namespace tavik {
namespace fs = std::filesystem;

namespace {

/// A box with the one title that stands for every reason why the book cannot be opened.
void prepare(QMessageBox& box, QMessageBox::Icon icon, const std::string& reason) {
    box.setIcon(icon);
    box.setWindowTitle(QStringLiteral("Tavik"));
    box.setText(QStringLiteral("Tavik 无法打开数据库"));
    // Paths are text, never markup.
    box.setTextFormat(Qt::PlainText);
    box.setInformativeText(QString::fromStdString(reason));
}

void alert(const std::string& reason) {
    QMessageBox box;
    prepare(box, QMessageBox::Critical, reason);
    box.addButton(QStringLiteral("退出"), QMessageBox::AcceptRole);
    box.exec();
}

/// Whether the user wants to begin with an empty book.
bool wantsNewBook(const EmptiedBookError& error) {
    QMessageBox box;
    prepare(box, QMessageBox::Question,
            std::string(error.what())
                + "。\n\n也可以把剩下的数据原样移到旁边，先用一个空的生词本开始。");
    const auto* const begin =
        box.addButton(QStringLiteral("移到旁边，从空的开始"), QMessageBox::AcceptRole);
    QPushButton* const quit = box.addButton(QStringLiteral("退出"), QMessageBox::RejectRole);
    box.setDefaultButton(quit);
    box.setEscapeButton(quit);
    box.exec();
    return box.clickedButton() == begin;
}

std::string descriptionOf(const fs::filesystem_error& error) {
    return "建不了目录 " + error.path1().string() + "（" + error.code().message()
           + "），请检查磁盘空间和权限。\n\n" + error.what();
}

} // namespace

void raiseAlert() {
    QWidget* const alert = QApplication::activeModalWidget();
    if (alert == nullptr) return;
    alert->raise();
    alert->activateWindow();
}

std::unique_ptr<AppEnvironment> openedEnvironment(const fs::path& dataDirectory,
                                                  AppSettings& settings,
                                                  const std::optional<fs::path>& dictionaryPath,
                                                  const EnvironmentPorts& ports) {
    const std::string book = (dataDirectory / AppEnvironment::bookName).string();
    const auto open = [&] {
        return std::make_unique<AppEnvironment>(dataDirectory, settings, dictionaryPath, ports);
    };
    try {
        try {
            return open();
        } catch (const EmptiedBookError& error) {
            if (!wantsNewBook(error)) return nullptr;
            setEmptiedBookAside(book, ports.now());
            return open();
        }
    } catch (const SQLiteDB::Error& error) {
        alert(bookFailure(book, error) + "。\n\n" + error.what());
    } catch (const fs::filesystem_error& error) {
        alert(descriptionOf(error));
    } catch (const std::runtime_error& error) {
        alert(error.what());
    }
    return nullptr;
}

} // namespace tavik
