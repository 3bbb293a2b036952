#include "UI/Browser/TableExport.h"

#include "Base/AsideFile.h"
#include "Base/Calendar.h"

#include <QDir>
#include <QFileDialog>
#include <QStandardPaths>
#include <optional>
#include <utility>

namespace tavik {

void TableExport::ask(std::vector<VocabItem> items, TableFormat format, Done done) {
    const bool isCSV = format == TableFormat::csv;
    auto* const dialog = new QFileDialog(&window, QStringLiteral("导出显示的单词"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    dialog->setDirectory(QDir(documents).exists() ? documents : QDir::homePath());
    dialog->setNameFilter(isCSV ? QStringLiteral("CSV 表格 (*.csv)")
                                : QStringLiteral("以制表符分隔的文本 (*.tsv)"));
    dialog->setDefaultSuffix(isCSV ? QStringLiteral("csv") : QStringLiteral("tsv"));
    dialog->selectFile(QStringLiteral("生词本"));
    QObject::connect(dialog, &QFileDialog::fileSelected, &window,
                     [this, items = std::move(items), format,
                      done = std::move(done)](const QString& path) mutable {
                         write(std::move(items), format, path.toStdString(), std::move(done));
                     });
    dialog->open();
}

void TableExport::write(std::vector<VocabItem> items, TableFormat format, const std::string& path,
                        Done done) {
    isBusy = true;
    const std::size_t count = items.size();
    using Failure = std::optional<std::string>;
    writing = tasks.start<Failure>(
        [items = std::move(items), format, path](const std::stop_token&) -> Failure {
            try {
                replaceFile(path, exportedItems(items, format, Calendar::current()));
                return std::nullopt;
            } catch (const FileError& error) {
                return error.what();
            }
        },
        [this, count, path, done = std::move(done)](const Failure& failure) {
            isBusy = false;
            if (failure) return done(QString::fromStdString(*failure), false);
            done(QStringLiteral("已把 %1 个单词导出到 %2")
                     .arg(QString::number(count), QString::fromStdString(path)),
                 true);
        });
}

} // namespace tavik
