#pragma once

#include <QApplication>
#include <QWidget>
#include <chrono>
#include <functional>
#include <map>
#include <optional>

namespace tavik {

/// The application object, with a clock at what one of its windows paints. On X11 only.
class PaintClock final : public QApplication {
public:
    using Clock = std::chrono::steady_clock;
    using Moment = Clock::time_point;

    using QApplication::QApplication;

    /// Minds this window only, which must outlive the watch; nullptr for none.
    void watch(const QWidget* watched);

    /// Forgets what was painted.
    void restart();

    /// Forgets what was painted of one widget.
    void forget(const QWidget& widget);

    /// When the server had drawn what the widget painted first since it was forgotten.
    std::optional<Moment> firstDrawn(const QWidget& widget) const;

    /// Is called before each paint event of the window's widgets.
    void onPaint(std::function<void(const QObject&)> observer) { painting = std::move(observer); }

    /// Lets the application work until `isDone` and then until nothing is left to be done, and
    /// returns when the server had drawn the last of it. Throws `std::runtime_error` when it takes
    /// more than ten seconds.
    Moment settle(const std::function<bool()>& isDone);

    bool notify(QObject* receiver, QEvent* event) override;

private:
    void notePaint(const QObject& receiver);
    void endFrame();

    const QWidget* window = nullptr;
    std::function<void(const QObject&)> painting;
    /// The widgets that have painted, and when that was drawn, if it is.
    std::map<const QObject*, std::optional<Moment>> painted;
    Moment lastDrawn;
    int depth = 0;
    bool isFrameOpen = false;
};

} // namespace tavik
