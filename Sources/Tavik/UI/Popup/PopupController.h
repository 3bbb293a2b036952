#pragma once

#include "Capture/CaptureResult.h"
#include "Environment/AppEnvironment.h"
#include "Ports/Mouse.h"
#include "Ports/WindowSystem.h"
#include "UI/Popup/PopupModel.h"
#include "UI/Popup/PopupPanel.h"
#include "UI/Popup/PopupPlacement.h"

#include <QObject>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tavik {

/// Shows what is known of a selection in a small window beside it. At most one such window exists.
///
/// For the main thread. It asks for explanations in the background and waits for nobody.
class PopupController {
public:
    using VideoHandler = std::function<void(const std::string& word)>;

    /// All must outlive the controller.
    PopupController(AppEnvironment& env, WindowSystem& windows, Mouse& mouse);
    /// Closes the popup.
    ~PopupController();
    PopupController(const PopupController&) = delete;
    PopupController& operator=(const PopupController&) = delete;

    /// Looks the capture up and shows the result in place of an earlier one. Unless it is for the
    /// mouse that rests on a word, the popup takes the keyboard, may speak the word, and asks the
    /// language model.
    void show(const CaptureResult& capture, bool hover);

    /// Looks up what the user has selected in the popup itself, at the same place. Whether there
    /// was anything.
    /// It has to have the keyboard.
    bool lookUpOwnSelection();

    /// Takes the popup away, gives the keyboard back to whom it was taken from, and cancels what
    /// was asked for.
    void close();

    bool isVisible() const { return panel != nullptr; }

    /// Whether the popup, if there is one, came of the mouse that rests on a word.
    bool isHover() const { return isForHover; }

    /// Whether the popup has the keyboard.
    bool isKey() const { return panel && panel->isActiveWindow(); }

    /// The popup's place in physical pixels from the top left of the desktop.
    std::optional<ScreenRect> frame() const;

    /// Null when there is no popup.
    const PopupModel* shownModel() const { return model.get(); }

    /// Called when the user wants to see clips with the word.
    void setOnVideo(VideoHandler handler) { onVideo = std::move(handler); }

    /// True from the beginning.
    void setClosesOnOutsideClick(bool closes) { closesOnOutsideClick = closes; }

    /// Saves the word that is shown, with its sentence.
    void save();

private:
    /// May be in the middle of an event of its own when it is closed.
    struct LaterDeletion {
        void operator()(PopupPanel* panel) const { panel->deleteLater(); }
    };

    std::unique_ptr<PopupPanel, LaterDeletion> makePanel();
    PopupActions actions();
    bool canExplain() const;
    ScreenRect inPoints(const ScreenRect& upwards) const;
    void chooseScreen(const std::vector<Screen>& screens, ScreenPoint point);
    void layout();
    void resizeKeepingTop();
    void placePanel();
    void limitClicks();
    void followChanges();
    void becomeKey();
    void pressed(ScreenPoint where);
    void speak();
    void startExplaining();
    void copyTranslation();

    AppEnvironment& env;
    WindowSystem& windows;
    Mouse& mouse;
    VideoHandler onVideo;
    bool closesOnOutsideClick = true;
    bool isForHover = false;
    std::shared_ptr<PopupModel> model;
    std::optional<ScreenRect> anchor;
    std::unique_ptr<PopupPanel, LaterDeletion> panel;
    /// The screen on which the popup is; its visible frame in points, and the popup's frame in
    /// them. Their y grows upwards from the lower edge of the primary screen.
    Screen screen;
    double primaryEdge = 0;
    ScreenRect visible;
    ScreenRect place;
    Subscription clickMonitor;
    std::vector<Subscription> sizeObserver;
    Subscription appearanceObserver;
    BackgroundTask explainTask;
    /// The context of what is done after the present event.
    std::unique_ptr<QObject> later;
};

} // namespace tavik
