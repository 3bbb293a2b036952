#pragma once

#include "Environment/AppEnvironment.h"
#include "HotKey/HotKeyManager.h"
#include "KeyPresser.h"
#include "PopupWatch.h"
#include "Shell/AppDelegate.h"
#include "UI/Popup/PopupController.h"

#include <QTimer>
#include <cstddef>
#include <functional>
#include <string>
#include <variant>

namespace tavik {

/// The way from the hot key to the popup as the program goes it, with a clock at its stages. For
/// the main thread.
///
/// Takes commands and answers each with one line of JSON, some of them later:
///     lookup      presses Alt+D and tells what was captured and how, and the milliseconds of the
///     stages:
///                 key, until the hot key's action; capture, until its result; lookup, until the
///                 popup is made and shown; paint, until the server has drawn it; and their total
///     close       closes the popup
///     hover X Y   shows a popup as for the mouse that rests there, once it is drawn
///     soak N      shows and closes N popups of all kinds
///     flicker     begins to show and close popups as for the resting mouse, until
///     calm        which tells how many there were
///     state       of the popup and of the keyboard
///     holdings    of this process
class PopupTrial {
public:
    using Answer = std::function<void(const std::string& line)>;

    /// All must outlive the trial, and the hot key be nobody's. Throws `std::runtime_error` when it
    /// is not granted.
    PopupTrial(AppEnvironment& env, const ShellPorts& ports, Answer answer);
    ~PopupTrial() = default;
    PopupTrial(const PopupTrial&) = delete;
    PopupTrial& operator=(const PopupTrial&) = delete;

    /// One at a time, except `state` and `calm`.
    void handle(const std::string& command);

private:
    using Captured = std::variant<CaptureResult, CaptureError>;
    using Moment = KeyPresser::Clock::time_point;

    struct Stages {
        Moment pressed;
        Moment acted;
        Moment captured;
        Moment shown;
    };

    void begin();
    void startCapture();
    void show(const Captured& captured);
    void tellStages(const CaptureResult& result);
    void showAt(double x, double y);
    void showNext();
    void tellState();
    void tellHoldings();
    void done();

    AppEnvironment& env;
    Answer answer;
    KeyPresser keys;
    PopupWatch watch;
    PopupController popup;
    HotKeyManager hotKey;
    BackgroundTask captureTask;
    Stages stages;
    QTimer nextPopup;
    QTimer keyRelease;
    std::size_t shown = 0;
    std::size_t wanted = 0;
    bool isFlickering = false;
};

} // namespace tavik
