#pragma once

#include "Environment/AppEnvironment.h"
#include "Ports/SingleInstance.h"
#include "Ports/TrayHost.h"
#include "Ports/WakeSignal.h"
#include "Shell/MenuRow.h"
#include "Shell/ProgramNotes.h"
#include "Shell/ProgramWindow.h"
#include "Shell/StatusItem.h"

#include <QTimer>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace tavik {

/// What the shell asks of the desktop; all of it must outlive the delegate.
struct ShellPorts {
    EnvironmentPorts environment;
    std::vector<const TrayHost*> trayHosts;
    WakeSignal& wakeSignal;
    SingleInstance& singleInstance;
};

/// The program in the tray: owns the environment, the icon, the windows and the timer that keeps
/// the counts fresh. One for the life of the process, on the main thread.
class AppDelegate {
public:
    AppDelegate(AppSettings& settings, ShellPorts ports);
    ~AppDelegate();

    AppDelegate(const AppDelegate&) = delete;
    AppDelegate& operator=(const AppDelegate&) = delete;

    /// Opens the user's data; when that fails, the user is told, and the program must end.
    bool openEnvironment(const std::filesystem::path& dataDirectory,
                         const std::optional<std::filesystem::path>& dictionaryPath);

    /// Shows the icon and begins to follow time, sleep and later starts of the program.
    void finishLaunching();

    void showProgram();

private:
    static std::vector<MenuRow> menuRows();
    bool isOfLate(const BookTrouble& trouble) const;
    ProgramState programState() const;
    /// Shows what has changed in the next turn of the event loop, when all of it can be read.
    template<typename T>
    void follow(const Published<T>& value);
    void updateStatusItem();
    void refresh();

    AppSettings& settings;
    ShellPorts ports;
    std::unique_ptr<AppEnvironment> env;
    std::unique_ptr<StatusItem> statusItem;
    std::unique_ptr<ProgramWindow> programWindow;
    QTimer dayTimer;
    std::vector<Subscription> subscriptions;
};

} // namespace tavik
