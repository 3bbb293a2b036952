#include "Shell/ProgramWindow.h"

#include "UI/Widgets/Fonts.h"
#include "UI/Widgets/Icons.h"

#include <QHBoxLayout>
#include <QKeySequence>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QString>
#include <QVBoxLayout>
#include <algorithm>
#include <cctype>

namespace tavik {
namespace {

constexpr int contentWidth = 336;
constexpr int iconSize = 48;
constexpr const char* drawing = "character.book.closed.fill";

QLabel* label(const QString& text, const QFont& font) {
    auto* const label = new QLabel(text);
    label->setFont(font);
    label->setWordWrap(true);
    // What comes from files and other programs is text, never markup.
    label->setTextFormat(Qt::PlainText);
    return label;
}

QLabel* secondaryLabel(const QString& text) {
    QLabel* const secondary = label(text, uiFont(FontSizes::secondary));
    secondary->setForegroundRole(QPalette::PlaceholderText);
    return secondary;
}

QHBoxLayout* header() {
    auto* const picture = new QLabel;
    picture->setPixmap(icon(drawing).pixmap(iconSize, iconSize));
    auto* const texts = new QVBoxLayout;
    texts->setSpacing(4);
    texts->addWidget(label(QStringLiteral("Tavik"), uiFont(FontSizes::headword, QFont::DemiBold)));
    texts->addWidget(secondaryLabel(QStringLiteral("划词翻译 · 生词本 · 记忆曲线复习 · 视频例句")));
    auto* const header = new QHBoxLayout;
    header->setSpacing(16);
    header->addWidget(picture, 0, Qt::AlignTop);
    header->addLayout(texts, 1);
    return header;
}

void clear(QLayout& layout) {
    while (QLayoutItem* const item = layout.takeAt(0)) {
        if (QWidget* const widget = item->widget(); widget != nullptr) {
            widget->hide();
            // A button may be the one whose click we are in.
            widget->deleteLater();
        }
        delete item;
    }
}

} // namespace

ProgramWindow::ProgramWindow(const Published<bool>& prefersDark)
    : themeFollower(*this, prefersDark, [this] { setPalette(themeFollower.theme().palette()); }),
      summary(label({}, uiFont(FontSizes::body))), notes(new QVBoxLayout),
      buttons(new QVBoxLayout) {
    setWindowTitle(QStringLiteral("Tavik"));
    setWindowIcon(icon(drawing));
    setFocusPolicy(Qt::StrongFocus);
    setPalette(themeFollower.theme().palette());
    summary->setMinimumWidth(contentWidth);
    notes->setSpacing(8);
    buttons->setSpacing(8);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(24, 24, 24, 24);
    layout->setSpacing(16);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->addLayout(header());
    layout->addWidget(summary);
    layout->addLayout(notes);
    layout->addLayout(buttons);
    auto* const escape = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    connect(escape, &QShortcut::activated, this, &QWidget::close);
}

void ProgramWindow::display(const ProgramState& state, const std::vector<MenuRow>& rows) {
    summary->setText(QString::fromStdString(bookSummary(state)));
    showNotes(programNotes(state));
    showRows(rows);
}

void ProgramWindow::showNotes(const std::vector<std::string>& texts) {
    if (texts == shownNotes) return;
    shownNotes = texts;
    clear(*notes);
    for (const std::string& text : texts)
        notes->addWidget(label(QString::fromStdString(text), uiFont(FontSizes::secondary)));
}

void ProgramWindow::showRows(const std::vector<MenuRow>& rows) {
    // The keyboard stays where it is.
    if (std::ranges::equal(rows, shownRows, looksLike)) return;
    shownRows = rows;
    clear(*buttons);
    for (const MenuRow& row : rows) {
        auto* const button = new QPushButton(QString::fromStdString(row.title));
        button->setFont(uiFont(FontSizes::body));
        if (row.key != 0)
            button->setShortcut(QKeySequence(Qt::CTRL | Qt::Key(std::toupper(row.key))));
        connect(button, &QPushButton::clicked, this, row.action);
        buttons->addWidget(button);
    }
}

void ProgramWindow::present() {
    show();
    raise();
    activateWindow();
    // Not on a button: the key that started the program may be pressed once more.
    setFocus();
}

} // namespace tavik
