#pragma once

#include <QObject>
#include <QTimer>
#include <functional>

namespace tavik {

/// Sees what reaches the program's windows. For the main thread, once the application object
/// exists.
class PopupWatch final : public QObject {
public:
    PopupWatch();

    /// Calls once, when the server has drawn what the next popup paints first.
    void awaitPaint(std::function<void()> painted) { onPaint = std::move(painted); }

    /// How many keys any window of the program was told of.
    int keyPresses() const { return keys; }

    bool eventFilter(QObject* object, QEvent* event) override;

private:
    void tellOfPaint();

    std::function<void()> onPaint;
    QTimer afterPaint;
    int keys = 0;
};

} // namespace tavik
