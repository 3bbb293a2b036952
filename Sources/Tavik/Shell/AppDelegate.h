#pragma once

#include "Capture/CaptureError.h"
#include "Environment/AppEnvironment.h"
#include "HotKey/HotKeyManager.h"
#include "Ports/HotKeyRegistrar.h"
#include "Ports/Mouse.h"
#include "Ports/SingleInstance.h"
#include "Ports/TrayHost.h"
#include "Ports/WakeSignal.h"
#include "Ports/WindowSystem.h"
#include "Shell/MenuRow.h"
#include "Shell/ProgramNotes.h"
#include "Shell/ProgramWindow.h"
#include "Shell/StatusItem.h"
#include "Shell/WindowSet.h"
#include "UI/Popup/PopupController.h"
#include "UI/Review/WordActions.h"

#include <QMessageBox>
#include <QTimer>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace tavik {

/// What the shell asks of the desktop; all of it must outlive the delegate.
struct ShellPorts {
    EnvironmentPorts environment;
    std::vector<const TrayHost*> trayHosts;
    WakeSignal& wakeSignal;
    SingleInstance& singleInstance;
    HotKeyRegistrar& hotKeyRegistrar;
    WindowSystem& windowSystem;
    Mouse& mouse;
};

/// The program in the tray: owns the environment, the icon, the hot key, the popup, the windows and
/// the timer that keeps the counts fresh. One for the life of the process, on the main thread.
class AppDelegate {
public:
    AppDelegate(AppSettings& settings, ShellPorts ports);
    ~AppDelegate();

    AppDelegate(const AppDelegate&) = delete;
    AppDelegate& operator=(const AppDelegate&) = delete;

    /// Opens the user's data; when that fails, the user is told, and the program must end.
    bool openEnvironment(const std::filesystem::path& dataDirectory,
                         const std::optional<std::filesystem::path>& dictionaryPath);

    /// Shows the icon, asks for the hot key, and begins to follow time, sleep and later starts of
    /// the program.
    void finishLaunching();

    void showProgram();

    /// What the hot key does: looks up what is selected in the application in front, or asks for
    /// the leave to read it.
    void lookUp();

    /// Looks up once the menu has closed and the application in front has the keyboard again.
    void menuLookupSelection();

    /// Asks whether other applications may be read.
    void showOnboarding();

    /// Asks for a word to look up. `note` says why, where the user has not asked for it.
    void showQuickLookup(const std::string& note = {});

    /// Begins a new session of review.
    void showReview();

    void showVocabulary();

    void showSettings();

    /// Opens clips with the word.
    static void showVideo(const std::string& word);

private:
    using Captured = std::variant<CaptureResult, CaptureError>;

    std::vector<MenuRow> menuRows();
    WordActions wordActions(const std::string& window);
    bool isTrusted() const;
    void registerHotKey();
    bool isHotKeyRefused() const;
    void followHotKey();
    void tellOfRefusedHotKey();
    void lookupSelection();
    void lookUpTyped(const CaptureResult& typed);
    void showCaptured(const Captured& captured, Date start);
    bool isOfLate(const BookTrouble& trouble) const;
    ProgramState programState() const;
    /// Shows what has changed in the next turn of the event loop, when all of it can be read.
    template<typename T>
    void follow(const Published<T>& value);
    void updateStatusItem();
    void refresh();

    AppSettings& settings;
    ShellPorts ports;
    HotKeyManager hotKey;
    std::unique_ptr<AppEnvironment> env;
    std::unique_ptr<PopupController> popup;
    BackgroundTask captureTask;
    bool isCapturing = false;
    std::unique_ptr<QMessageBox> onboarding;
    std::unique_ptr<StatusItem> statusItem;
    std::unique_ptr<ProgramWindow> programWindow;
    WindowSet windows;
    QTimer dayTimer;
    /// Until the user is told that there is no hot key.
    QTimer hotKeyTimer;
    std::vector<Subscription> subscriptions;
};

} // namespace tavik
