#include "Main/Desktop.h"

#include "Base/DataDirectory.h"
#include "Base/PreferencesFile.h"
#include "Platform/Linux/AtSpi/AtSpiAccessibility.h"
#include "Platform/Linux/DBus/AccessibilityBus.h"
#include "Platform/Linux/DBus/DesktopNotifier.h"
#include "Platform/Linux/DBus/LogindWakeSignal.h"
#include "Platform/Linux/DBus/PortalAppearance.h"
#include "Platform/Linux/DBus/PortalHotKey.h"
#include "Platform/Linux/DBus/StatusNotifierHost.h"
#include "Platform/Linux/Process/ProcProcesses.h"
#include "Platform/Linux/Secrets/SecretServiceKeychain.h"
#include "Platform/Linux/Speech/SpeechDispatcher.h"
#include "Platform/Linux/X11/X11HotKey.h"
#include "Platform/Linux/X11/X11Mouse.h"
#include "Platform/Linux/X11/X11Pasteboard.h"
#include "Platform/Linux/X11/X11WindowSystem.h"
#include "Platform/Linux/X11/X11Workspace.h"
#include "Platform/Linux/X11/XEmbedTrayHost.h"
#include "Platform/Linux/Xdg/DesktopEntries.h"
#include "Platform/Linux/Xdg/JSONPreferenceStore.h"
#include "Platform/Null/MemoryPreferenceStore.h"
#include "Platform/Null/NullAppearance.h"
#include "Platform/Null/NullHotKeyRegistrar.h"
#include "Platform/Null/NullKeychain.h"
#include "Platform/Null/NullMouse.h"
#include "Platform/Null/NullNotifier.h"
#include "Platform/Null/NullSpeechSynthesizer.h"
#include "Platform/Null/NullWakeSignal.h"
#include "Platform/Qt/QtWindowSystem.h"

#include <QGuiApplication>
#include <chrono>
#include <memory>
#include <string>

namespace tavik {
namespace {

/// How long the end of the program waits for a key that is being written: three seconds in all, of
/// which giving up may take the rest.
constexpr std::chrono::milliseconds longestGoodbye{2700};

X11Workspace::NameOf namesOfPrograms() {
    const auto entries = std::make_shared<DesktopEntries>();
    return [entries](const std::string& identifier, const std::string& windowClass) {
        return entries->name(identifier, windowClass);
    };
}

/// In a Wayland session an X server is there for old programs only, and hears of no other's keys.
bool isWaylandSession() {
    return environmentVariable("WAYLAND_DISPLAY").has_value()
           || environmentVariable("XDG_SESSION_TYPE") == "wayland";
}

bool isOnX11() {
    return QGuiApplication::platformName() == u"xcb";
}

} // namespace

Desktop::Desktop(bool isDiagnostic)
    : sessionBus(BusConnection::open(busThread, sessionBusAddress())),
      accessibilityTrust(std::make_unique<AccessibilityBus>(sessionBus, mainQueue)),
      accessibility(std::make_unique<AtSpiAccessibility>()),
      workspace(std::make_unique<X11Workspace>(namesOfPrograms())),
      pasteboard(std::make_unique<X11Pasteboard>()), processes(std::make_unique<ProcProcesses>()) {
    if (isDiagnostic)
        fillInForDiagnosis();
    else
        fillIn();
}

void Desktop::fillIn() {
    systemBus = BusConnection::open(busThread, systemBusAddress());
    preferenceStore = std::make_unique<JSONPreferenceStore>(preferencesPath(environmentVariable));
    secrets = std::make_unique<SecretServiceKeychain>(mainQueue);
    speechSynthesizer = std::make_unique<SpeechDispatcher>(mainQueue);
    notifier = std::make_unique<DesktopNotifier>(sessionBus, mainQueue);
    wakeSignal = std::make_unique<LogindWakeSignal>(systemBus, mainQueue);
    trayHosts.push_back(std::make_unique<StatusNotifierHost>(sessionBus, mainQueue));
    trayHosts.push_back(std::make_unique<XEmbedTrayHost>());
    appearance = std::make_unique<PortalAppearance>(sessionBus, mainQueue);
    fillInKeysAndMouse();
}

void Desktop::fillInKeysAndMouse() {
    if (isWaylandSession())
        hotKeyRegistrar = std::make_unique<PortalHotKey>(busThread, sessionBusAddress(), mainQueue);
    else
        hotKeyRegistrar = std::make_unique<X11HotKey>(mainQueue);
    if (isOnX11()) {
        windowSystem = std::make_unique<X11WindowSystem>();
        mouse = std::make_unique<X11Mouse>(mainQueue);
    } else {
        windowSystem = std::make_unique<QtWindowSystem>();
        mouse = std::make_unique<NullMouse>();
    }
}

void Desktop::fillInForDiagnosis() {
    preferenceStore = std::make_unique<MemoryPreferenceStore>();
    secrets = std::make_unique<NullKeychain>(mainQueue);
    speechSynthesizer = std::make_unique<NullSpeechSynthesizer>();
    notifier = std::make_unique<NullNotifier>(mainQueue);
    wakeSignal = std::make_unique<NullWakeSignal>();
    appearance = std::make_unique<NullAppearance>();
    hotKeyRegistrar = std::make_unique<NullHotKeyRegistrar>();
    windowSystem = std::make_unique<QtWindowSystem>();
    mouse = std::make_unique<NullMouse>();
}

Desktop::~Desktop() {
    preferenceStore->flush();
    secrets->finish(longestGoodbye);
}

ShellPorts Desktop::shellPorts(SingleInstance& singleInstance) {
    std::vector<const TrayHost*> hosts;
    for (const auto& host : trayHosts)
        hosts.push_back(host.get());
    return {{mainQueue, *speechSynthesizer, *notifier, *accessibility, *accessibilityTrust,
             *workspace, *pasteboard, *processes, *appearance, timers},
            hosts,
            *wakeSignal,
            singleInstance,
            *hotKeyRegistrar,
            *windowSystem,
            *mouse};
}

} // namespace tavik
