#include "Platform/Linux/X11/X11Workspace.h"

#include "Platform/Linux/X11/DisplayThread.h"
#include "Platform/Linux/X11/Monitors.h"
#include "Platform/Linux/X11/WindowReader.h"

#include <QString>
#include <set>
#include <utility>

namespace tavik {
namespace {

constexpr std::chrono::milliseconds longestWait{1000};
/// Of the windows that are looked at for applications.
constexpr std::size_t mostWindows = 200;

/// A window, and what its application calls itself in it.
struct FoundWindow {
    FrontApplication application;
    std::string windowClass;
};

std::optional<std::string> nonEmpty(const QString& text) {
    return text.isEmpty() ? std::nullopt : std::optional(text.toStdString());
}

/// Nothing when the window is gone.
std::optional<FoundWindow> read(const WindowReader& reader, xcb_window_t window) {
    const QString windowClass = reader.classOf(window);
    const auto applicationID = nonEmpty(reader.applicationOf(window));
    const QString title = reader.titleOf(window);
    const std::int64_t process = reader.processOf(window);
    const auto contents = reader.contentsOf(window);
    if (!contents) return std::nullopt;
    return FoundWindow{
        {.localizedName = std::nullopt,
         .bundleIdentifier = applicationID ? applicationID : nonEmpty(windowClass.toLower()),
         .processIdentifier = process,
         .windowTitle = title.toStdString(),
         .contents = *contents,
         .frame = reader.frameOf(window, *contents),
         .window = window},
        windowClass.toStdString()};
}

std::optional<FoundWindow> findActiveWindow(const OpenDisplay& display) {
    const WindowReader reader(display);
    const xcb_window_t window = reader.active();
    return window == XCB_NONE ? std::nullopt : read(reader, window);
}

/// One window of each process, and of each class of windows that do not tell theirs.
std::vector<FoundWindow> findApplications(const OpenDisplay& display) {
    const WindowReader reader(display);
    std::vector<FoundWindow> found;
    std::set<std::pair<std::int64_t, QString>> seen;
    for (const xcb_window_t window : reader.uppermost(mostWindows)) {
        if (!reader.isNormal(window)) continue;
        const std::int64_t process = reader.processOf(window);
        const std::pair key(process, process > 0 ? QString() : reader.classOf(window));
        if (seen.contains(key)) continue;
        if (auto whole = read(reader, window)) {
            found.push_back(*std::move(whole));
            seen.insert(key);
        }
    }
    return found;
}

std::vector<ScreenRect> findScreens(const OpenDisplay& display) {
    return monitorsOf(display.connection, display.root);
}

} // namespace

X11Workspace::X11Workspace(NameOf nameOf)
    : nameOf(std::move(nameOf)), display(std::make_unique<DisplayThread>()) {}

X11Workspace::~X11Workspace() = default;

std::optional<FrontApplication> X11Workspace::frontApplication() {
    auto window = display->ask<std::optional<FoundWindow>>(findActiveWindow, longestWait)
                      .value_or(std::nullopt);
    if (!window) return std::nullopt;
    return named(std::move(window->application), window->windowClass);
}

std::vector<FrontApplication> X11Workspace::applications() {
    auto windows = display->ask<std::vector<FoundWindow>>(findApplications, longestWait)
                       .value_or(std::vector<FoundWindow>());
    std::vector<FrontApplication> applications;
    applications.reserve(windows.size());
    for (FoundWindow& window : windows)
        applications.push_back(named(std::move(window.application), window.windowClass));
    return applications;
}

FrontApplication X11Workspace::named(FrontApplication application,
                                     const std::string& windowClass) const {
    application.localizedName = nameOf(application.bundleIdentifier.value_or(""), windowClass);
    if (!application.localizedName && !windowClass.empty()) application.localizedName = windowClass;
    return application;
}

std::vector<ScreenRect> X11Workspace::screens() {
    return display->ask<std::vector<ScreenRect>>(findScreens, longestWait)
        .value_or(std::vector<ScreenRect>());
}

} // namespace tavik
