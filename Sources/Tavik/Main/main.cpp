#include "Base/DataDirectory.h"
#include "Environment/AppEnvironment.h"
#include "Main/Desktop.h"
#include "Main/DiagnosticDirectory.h"
#include "Main/RunMode.h"
#include "Platform/Linux/Process/QuitSignals.h"
#include "Platform/Linux/Process/SocketInstance.h"
#include "Platform/Linux/X11/DisplayCheck.h"
#include "Settings/AppSettings.h"
#include "Shell/AppDelegate.h"
#include "Shell/CaptureProbeReport.h"
#include "Shell/CaptureProbeRun.h"
#include "UI/Widgets/Fonts.h"

#include <QApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QMessageBox>
#include <QSessionManager>
#include <QTranslator>
#include <chrono>
#include <exception>
#include <filesystem>
#include <iostream>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace tavik {
namespace {

enum ExitCode {
    exitOK = 0,
    exitNoDisplay = 1,
    exitNoBook = 2,
    exitNotThere = 3,
    exitNoAnswer = 4,
    exitStopped = 130
};

constexpr std::string_view helpText =
    "Tavik：划词翻译、生词本、记忆曲线复习、视频例句\n"
    "\n"
    "用法：tavik [选项]\n"
    "\n"
    "启动后在系统托盘里运行；已经在运行时，再次启动会打开它的窗口。\n"
    "\n"
    "选项：\n"
    "  --capture-probe [--json]\n"
    "              检查正在运行的每个程序：怎样读到其中选中的文字，读不到又该怎么办。\n"
    "              不切换窗口，不按键，不动剪贴板，也不显示选中的文字\n"
    "  --version   显示版本\n"
    "  -h, --help  显示本说明\n"
    "\n"
    "环境变量 TAVIK_DATA_DIR 指定放生词本的目录。\n"
    "退出码：0 正常；1 没有图形界面；2 打不开生词本；3 这一版没有所要的功能；\n"
    "4 已经在运行的 Tavik 没有回应；130 检查中途被叫停。\n";

bool hasWayland() {
    const std::filesystem::path folder = environmentVariable("XDG_RUNTIME_DIR").value_or("");
    const std::string name = environmentVariable("WAYLAND_DISPLAY").value_or("");
    std::error_code ignored;
    return !name.empty() && std::filesystem::is_socket(folder / name, ignored);
}

/// Says what is missing when there is no desktop to run on; Qt would end the process.
bool hasDesktop() {
    if (environmentVariable("QT_QPA_PLATFORM") || hasWayland()) return true;
    if (environmentVariable("DISPLAY") && canReachXServer()) return true;
    std::cerr << "连不上图形界面，Tavik 要在桌面里运行。在终端里查词请用 tavik-cli。\n";
    return false;
}

/// X is where a popup can stand beside the word, so it is taken wherever there is a way to it. The
/// programs that we start choose for themselves.
class PreferredPlatform {
public:
    PreferredPlatform() {
        if (environmentVariable("QT_QPA_PLATFORM") || !environmentVariable("DISPLAY")) return;
        qputenv("QT_QPA_PLATFORM", "xcb;wayland");
        isChosen = true;
    }

    ~PreferredPlatform() { restore(); }

    PreferredPlatform(const PreferredPlatform&) = delete;
    PreferredPlatform& operator=(const PreferredPlatform&) = delete;

    /// For when the application object has read it.
    void restore() {
        if (isChosen) qunsetenv("QT_QPA_PLATFORM");
        isChosen = false;
    }

private:
    bool isChosen = false;
};

/// Our windows are read like those of others, also where accessibility is switched on only later.
/// Qt asks for this when the bus has answered, so it stays.
void letOwnWindowsBeRead() {
    constexpr const char* name = "QT_LINUX_ACCESSIBILITY_ALWAYS_ON";
    if (!environmentVariable(name)) qputenv(name, "1");
}

/// What Qt itself says in dialogs and menus.
void speakChinese(QApplication& application) {
    QLocale::setDefault(QLocale(QLocale::Chinese, QLocale::China));
    auto* const texts = new QTranslator(&application);
    if (texts->load(QStringLiteral("qtbase_zh_CN"),
                    QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QApplication::installTranslator(texts);
}

void describe(QApplication& application) {
    QApplication::setApplicationName(QStringLiteral("tavik"));
    QApplication::setApplicationVersion(QStringLiteral(TAVIK_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("com.tavik.app"));
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setFont(uiFont(FontSizes::body));
    speakChinese(application);
    // The login item starts the program; a restored session need not do it, too.
    for (const auto request :
         {&QGuiApplication::commitDataRequest, &QGuiApplication::saveStateRequest})
        QObject::connect(&application, request, [](QSessionManager& manager) {
            manager.setRestartHint(QSessionManager::RestartNever);
        });
}

int printCaptureProbe(const EnvironmentPorts& ports, bool isJSON) {
    const auto report = runCaptureProbe(ports);
    if (!report) return exitStopped;
    std::cout << (isJSON ? probeJSON(*report) : probeTable(*report)) << std::flush;
    return exitOK;
}

/// Whether this process is the one for its data. One that ends just now, and may take a while for
/// that, is waited for; one that goes on is asked to show itself.
enum class Claim { granted, shownRunning, unanswered };

Claim claim(SocketInstance& instance) {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::seconds(4);
    do {
        if (instance.claim()) return Claim::granted;
        if (instance.showRunning()) return Claim::shownRunning;
    } while (Clock::now() < end);
    return Claim::unanswered;
}

int giveWay(Claim claim) {
    if (claim == Claim::shownRunning) return exitOK;
    const auto message = QStringLiteral("Tavik 已经在运行，但没有回应。请结束它，再重新启动。");
    std::cerr << message.toStdString() << '\n';
    QMessageBox box(QMessageBox::Warning, QStringLiteral("Tavik"), message);
    box.addButton(QStringLiteral("关闭"), QMessageBox::RejectRole);
    box.exec();
    return exitNoAnswer;
}

/// `isJSON` is for the modes that print a report.
int runApplication(RunMode mode, bool isJSON) {
    const auto dataDirectory = AppEnvironment::defaultDataDirectory(environmentVariable);
    SocketInstance instance(dataDirectory);
    if (!isDiagnostic(mode))
        if (const Claim answer = claim(instance); answer != Claim::granted) return giveWay(answer);
    Desktop desktop(isDiagnostic(mode));
    if (mode == RunMode::captureProbe)
        return printCaptureProbe(desktop.shellPorts(instance).environment, isJSON);
    AppSettings settings(desktop.preferences(), desktop.keychain(),
                         AppSettings::standardKeychainAccount);
    AppDelegate delegate(settings, desktop.shellPorts(instance));
    if (!delegate.openEnvironment(dataDirectory, AppEnvironment::defaultDictionaryPath()))
        return exitNoBook;
    if (mode == RunMode::snapshot) {
        std::cerr << "这一版还没有 --snapshot。\n";
        return exitNotThere;
    }
    delegate.finishLaunching();
    const int exitCode = QApplication::exec();
    // Nobody is there any more to be shown, though the end may wait for the key chain.
    instance.endListening();
    return exitCode;
}

/// Also while a message is all that there is.
void quit() {
    QApplication::closeAllWindows();
    QApplication::quit();
}

int start(int argumentCount, char** arguments) {
    keepFilesPrivate();
    const std::span all(arguments, static_cast<std::size_t>(argumentCount));
    const RunMode mode = runMode({all.begin() + 1, all.end()});
    const bool isJSON = all.size() > 2 && std::string_view(all[2]) == "--json";
    if (mode == RunMode::help || mode == RunMode::version) {
        std::cout << (mode == RunMode::help ? helpText : "tavik " TAVIK_VERSION "\n");
        return exitOK;
    }
    std::optional<DiagnosticDirectory> ownDirectory;
    if (isDiagnostic(mode)) ownDirectory.emplace();
    if (!hasDesktop()) return exitNoDisplay;
    letOwnWindowsBeRead();
    PreferredPlatform platform;
    QApplication application(argumentCount, arguments);
    platform.restore();
    describe(application);
    const QuitSignals signals(quit);
    return runApplication(mode, isJSON);
}

} // namespace
} // namespace tavik

int main(int argumentCount, char** arguments) {
    try {
        return tavik::start(argumentCount, arguments);
    } catch (const std::exception& error) {
        std::cerr << "错误：" << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
