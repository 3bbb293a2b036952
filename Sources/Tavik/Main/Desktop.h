#pragma once

#include "Platform/Linux/DBus/BusConnection.h"
#include "Platform/Linux/DBus/BusThread.h"
#include "Platform/Qt/QtMainQueue.h"
#include "Platform/Qt/QtTimers.h"
#include "Ports/Accessibility.h"
#include "Ports/AccessibilityTrust.h"
#include "Ports/Appearance.h"
#include "Ports/HotKeyRegistrar.h"
#include "Ports/Keychain.h"
#include "Ports/Mouse.h"
#include "Ports/Notifier.h"
#include "Ports/Pasteboard.h"
#include "Ports/PreferenceStore.h"
#include "Ports/Processes.h"
#include "Ports/SingleInstance.h"
#include "Ports/SpeechSynthesizer.h"
#include "Ports/WakeSignal.h"
#include "Ports/WindowSystem.h"
#include "Ports/Workspace.h"
#include "Shell/AppDelegate.h"

#include <memory>
#include <vector>

namespace tavik {

/// The adapters of the desktop that this process runs on. To be made and destroyed on the main
/// thread, once the application object exists.
class Desktop {
public:
    /// A diagnostic run leaves nothing behind and disturbs nobody: its preferences and secrets end
    /// with the process, and it has no icon, no voice and no notifications.
    explicit Desktop(bool isDiagnostic);
    ~Desktop();
    Desktop(const Desktop&) = delete;
    Desktop& operator=(const Desktop&) = delete;

    PreferenceStore& preferences() { return *preferenceStore; }

    Keychain& keychain() { return *secrets; }

    ShellPorts shellPorts(SingleInstance& singleInstance);

private:
    void fillIn();
    void fillInForDiagnosis();
    void fillInKeysAndMouse();

    QtMainQueue mainQueue;
    QtTimers timers;
    BusThread busThread;
    std::shared_ptr<BusConnection> sessionBus;
    std::shared_ptr<BusConnection> systemBus;
    std::unique_ptr<AccessibilityTrust> accessibilityTrust;
    std::unique_ptr<Accessibility> accessibility;
    std::unique_ptr<Workspace> workspace;
    std::unique_ptr<Pasteboard> pasteboard;
    std::unique_ptr<Processes> processes;
    std::unique_ptr<PreferenceStore> preferenceStore;
    std::unique_ptr<Keychain> secrets;
    std::unique_ptr<SpeechSynthesizer> speechSynthesizer;
    std::unique_ptr<Notifier> notifier;
    std::unique_ptr<WakeSignal> wakeSignal;
    std::unique_ptr<Appearance> appearance;
    std::unique_ptr<HotKeyRegistrar> hotKeyRegistrar;
    std::unique_ptr<WindowSystem> windowSystem;
    std::unique_ptr<Mouse> mouse;
    std::vector<std::unique_ptr<TrayHost>> trayHosts;
};

} // namespace tavik
