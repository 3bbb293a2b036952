// A window with Qt's text fields, for the trials of selection capture:
// tavik-trial-editor RICH.html PLAIN.txt
//
// Reads lines from standard input and answers each with one. "FIELD OCCURRENCE TEXT" scrolls that
// text into view and answers with its rectangle on the screen, "X Y WIDTH HEIGHT"; "clear" takes
// back all selections; "capture" answers as tavik-capture does, but from within, while the window
// goes on. The fields are rich, plain, line, password and label, of which accessibility tells no
// selection.

#include "CaptureAnswers.h"

#include <unistd.h>

#include <QApplication>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QSocketNotifier>
#include <QTextEdit>
#include <QVBoxLayout>
#include <iostream>
#include <string>
#include <thread>

namespace tavik {
namespace {

QString contents(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) qFatal("cannot read %s", qPrintable(path));
    return QString::fromUtf8(file.readAll());
}

/// From one caret to another in the same line, on the screen. A field's caret has blank at its
/// sides.
QRect between(const QWidget& area, QRect first, QRect last) {
    return {area.mapToGlobal(QPoint(first.center().x(), first.top())),
            QSize(last.center().x() - first.center().x(), qMax(first.height(), last.height()))};
}

int placeOf(const QString& part, int occurrence, const QString& text) {
    qsizetype place = -1;
    for (int i = 0; i < occurrence; ++i)
        place = text.indexOf(part, place + 1);
    return static_cast<int>(place);
}

/// For both of the editors of many lines, which have no base class for this.
template<class Editor>
QRect reveal(Editor& editor, const QString& part, int occurrence) {
    editor.setFocus();
    const int place = placeOf(part, occurrence, editor.toPlainText());
    QTextCursor cursor(editor.document());
    cursor.setPosition(place);
    editor.setTextCursor(cursor);
    editor.ensureCursorVisible();
    const QRect first = editor.cursorRect(cursor);
    cursor.setPosition(place + static_cast<int>(part.size()));
    return between(*editor.viewport(), first, editor.cursorRect(cursor));
}

template<class Editor>
void takeBackSelection(Editor& editor) {
    QTextCursor cursor = editor.textCursor();
    cursor.clearSelection();
    editor.setTextCursor(cursor);
}

/// Lets the place of its caret be known.
class Field : public QLineEdit {
public:
    using QLineEdit::QLineEdit;

    QRect reveal(const QString& part, int occurrence) {
        setFocus();
        const int place = placeOf(part, occurrence, text());
        setCursorPosition(place);
        const QRect first = cursorRect();
        setCursorPosition(place + static_cast<int>(part.size()));
        return between(*this, first, cursorRect());
    }
};

/// A text of one line that can be selected.
class Label : public QLabel {
public:
    explicit Label(const QString& text) : QLabel(text) {
        setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
        setMargin(0);
        setIndent(0);
    }

    QRect reveal(const QString& part, int occurrence) {
        setFocus();
        const int place = placeOf(part, occurrence, text());
        const int left = fontMetrics().horizontalAdvance(text().left(place));
        return {mapToGlobal(QPoint(left, 0)),
                QSize(fontMetrics().horizontalAdvance(part), height())};
    }
};

class Window : public QWidget {
public:
    Window(const QString& richPath, const QString& plainPath) {
        setWindowTitle("tavik-trial-editor");
        for (QWidget* widget : {static_cast<QWidget*>(&rich), static_cast<QWidget*>(&plain),
                                static_cast<QWidget*>(&line), static_cast<QWidget*>(&password),
                                static_cast<QWidget*>(&label)})
            column.addWidget(widget);
        rich.setHtml(contents(richPath));
        plain.setPlainText(contents(plainPath));
        line.setText("We type here. A concise remark fits in. Done.");
        password.setText("confidential");
        password.setEchoMode(QLineEdit::Password);
        resize(1100, 700);
    }

    void handle(const QString& request) {
        // Reads this very window, which must be free to answer.
        if (request == "capture")
            reader = std::jthread([this] { std::cout << captures.next() << std::endl; });
        else
            std::cout << answer(request) << std::endl;
    }

private:
    std::string answer(const QString& request) {
        if (request == "clear") return clear();
        const QString field = request.section(' ', 0, 0);
        const int occurrence = request.section(' ', 1, 1).toInt();
        const QString part = request.section(' ', 2);
        QRect box;
        if (field == "rich") box = reveal(rich, part, occurrence);
        if (field == "plain") box = reveal(plain, part, occurrence);
        if (field == "line") box = line.reveal(part, occurrence);
        if (field == "password") box = password.reveal(part, occurrence);
        if (field == "label") box = label.reveal(part, occurrence);
        return QString("%1 %2 %3 %4")
            .arg(box.x())
            .arg(box.y())
            .arg(box.width())
            .arg(box.height())
            .toStdString();
    }

    std::string clear() {
        takeBackSelection(rich);
        takeBackSelection(plain);
        line.deselect();
        password.deselect();
        label.setSelection(0, 0);
        return "done";
    }

    QVBoxLayout column{this};
    QTextEdit rich;
    QPlainTextEdit plain;
    Field line;
    Field password;
    Label label{"A label has some selectable text."};
    CaptureAnswers captures;
    std::jthread reader;
};

} // namespace
} // namespace tavik

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() != 3) qFatal("tavik-trial-editor RICH.html PLAIN.txt");
    tavik::Window window(arguments.at(1), arguments.at(2));
    window.show();
    const QSocketNotifier requests(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&requests, &QSocketNotifier::activated, &window, [&window] {
        // One line at a time, as the other side waits for each answer.
        std::string request;
        if (!std::getline(std::cin, request)) {
            QApplication::quit();
            return;
        }
        window.handle(QString::fromStdString(request));
    });
    return QApplication::exec();
}
