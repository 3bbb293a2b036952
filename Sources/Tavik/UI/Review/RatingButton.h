#pragma once

#include "Learning/Card.h"
#include "UI/Widgets/Theme.h"

#include <QAbstractButton>
#include <string>

namespace tavik {

/// A button that gives a rating: its name, when the word would come back, and the key for it.
class RatingButton final : public QAbstractButton {
public:
    /// The theme must outlive the button.
    RatingButton(Rating rating, const Theme& theme);

    void showPreview(const std::string& preview);

    void setTheme(const Theme& theme);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    const Tint& tint() const;

    Rating rating;
    const Theme* colors;
    QString preview;
};

} // namespace tavik
