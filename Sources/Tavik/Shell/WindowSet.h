#pragma once

#include "Ports/WindowSystem.h"

#include <QPointer>
#include <QString>
#include <QWidget>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace tavik {

/// The program's windows, each under a name of its own. A closed window stays until it is replaced.
///
/// What the windows show may end with the set: they are gone when it is.
class WindowSet {
public:
    /// The window system must outlive the set.
    explicit WindowSet(WindowSystem& windowSystem) : windowSystem(windowSystem) {}

    ~WindowSet();
    WindowSet(const WindowSet&) = delete;
    WindowSet& operator=(const WindowSet&) = delete;

    struct Style {
        QString title;
        bool isResizable = false;
        /// Whether a new window takes the place of one that is there; else that comes to the front.
        bool isRecreated = false;
        /// Whether it stays above the windows of other programs.
        bool isFloating = false;
    };

    using Content = std::function<std::unique_ptr<QWidget>()>;

    /// Brings the window to the front, with the keyboard, in the middle of the screen if it is new.
    QWidget& present(const std::string& id, const Style& style, const Content& makeContent);

    bool isVisible(const std::string& id) const;

    /// Null when there is none.
    QWidget* window(const std::string& id) const;

private:
    void bringToFront(QWidget& window);
    void putAway(QWidget& window);

    WindowSystem& windowSystem;
    std::map<std::string, QPointer<QWidget>> windows;
    /// Closed ones that may be in the middle of an event of their own.
    std::vector<QPointer<QWidget>> replaced;
};

} // namespace tavik
