#pragma once

#include "Ports/WindowSystem.h"
#include "UI/Popup/PopupView.h"
#include "UI/Widgets/Theme.h"

#include <QWidget>
#include <functional>
#include <memory>

namespace tavik {

/// The window of a popup: without a frame, above all others, on all work spaces, and no business of
/// a window manager. It never takes the keyboard by itself.
class PopupPanel final : public QWidget {
public:
    /// `isTranslucent` is whether there is a compositor, without which there is no shadow and the
    /// corners are cut out. The theme must outlive the panel.
    PopupPanel(std::unique_ptr<PopupView> content, bool isTranslucent, const Theme& theme);

    PopupView& view() { return *content; }

    void setOnEscape(std::function<void()> action) { onEscape = std::move(action); }

    void setOnReturn(std::function<void()> action) { onReturn = std::move(action); }

    void setTheme(const Theme& theme);

    /// Puts the content, without the shadow around it, at `frame` of `screen`, in physical pixels
    /// from the top left of the desktop.
    void place(const ScreenRect& frame, const Screen& screen);

    bool hasShadow() const { return isTranslucent; }

    /// Where the content is in the window, in physical pixels.
    ScreenRect contentPlace() const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    QRect card() const;
    void confirm();

    PopupView* content;
    bool isTranslucent;
    const Theme* colors;
    std::function<void()> onEscape;
    std::function<void()> onReturn;
};

} // namespace tavik
