#pragma once

#include "Environment/BackgroundTasks.h"
#include "Vocabulary/VocabularyExport.h"

#include <QString>
#include <QWidget>
#include <functional>
#include <vector>

namespace tavik {

/// Asks the user for a file and writes the words into it in the background, one file at a time.
class TableExport {
public:
    /// Told how it ended: a Chinese sentence, and whether the file was written.
    using Done = std::function<void(const QString& message, bool isWritten)>;

    /// All must outlive the export.
    TableExport(BackgroundTasks& tasks, QWidget& window) : tasks(tasks), window(window) {}

    /// Whether a file is being written, until which no other one may be.
    bool isWriting() const { return isBusy; }

    /// Shows the question and returns at once.
    void ask(std::vector<VocabItem> items, TableFormat format, Done done);

    /// Writes the file at `path` in place of what is there.
    void write(std::vector<VocabItem> items, TableFormat format, const std::string& path,
               Done done);

private:
    BackgroundTasks& tasks;
    QWidget& window;
    BackgroundTask writing;
    bool isBusy = false;
};

} // namespace tavik
