#include "PopupWatch.h"

#include "Platform/Linux/X11/XCBHandles.h"
#include "UI/Popup/PopupPanel.h"

#include <QCoreApplication>
#include <QEvent>
#include <QGuiApplication>
#include <utility>

namespace tavik {
namespace {

void awaitServer() {
    auto* const connection =
        qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
    const XCBReply<xcb_get_input_focus_reply_t> answer(
        xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
}

} // namespace

PopupWatch::PopupWatch() {
    QCoreApplication::instance()->installEventFilter(this);
    afterPaint.setSingleShot(true);
    QObject::connect(&afterPaint, &QTimer::timeout, [this] { tellOfPaint(); });
}

bool PopupWatch::eventFilter(QObject* object, QEvent* event) {
    if (event->type() == QEvent::KeyPress && object->isWindowType()) ++keys;
    // What is painted goes to the server after the event.
    if (event->type() == QEvent::Paint && onPaint && dynamic_cast<PopupPanel*>(object) != nullptr)
        afterPaint.start(0);
    return false;
}

void PopupWatch::tellOfPaint() {
    awaitServer();
    const auto painted = std::exchange(onPaint, {});
    if (painted) painted();
}

} // namespace tavik
