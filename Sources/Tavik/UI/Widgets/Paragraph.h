#pragma once

#include "UI/Widgets/Fonts.h"

#include <QTextBrowser>
#include <QTextDocument>

namespace tavik {

/// A text that wraps, also within words that are longer than a line, from which users can copy. It
/// is as high as its text, and scrolls with what it stands in.
class Paragraph final : public QTextBrowser {
public:
    static constexpr int readingLineHeight = 140;

    /// The height of its lines is in percent of the font's.
    explicit Paragraph(int pixels = FontSizes::body, int lineHeight = readingLineHeight);

    /// What the text says must have been escaped by whoever made the HTML.
    void showHTML(const QString& html);

    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void setText(QTextDocument& document, const QString& html) const;

    int lineHeight;
    QString shown;
    /// Laid out for a width that is only asked about.
    mutable QTextDocument measured;
};

} // namespace tavik
