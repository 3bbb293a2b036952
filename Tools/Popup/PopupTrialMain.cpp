// Shows popups in every way, on the adapters of the program and over a book of its own: commands on
// standard input, answers on standard output (PopupTrial.h). For the private desktop.

#include "Main/Desktop.h"
#include "Platform/Linux/Process/SocketInstance.h"
#include "Platform/Null/MemoryPreferenceStore.h"
#include "Platform/Null/NullKeychain.h"
#include "PopupTrial.h"
#include "UI/Widgets/Fonts.h"

#include <unistd.h>

#include <QApplication>
#include <QSocketNotifier>
#include <QTemporaryDir>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <string>

namespace tavik {
namespace {

int run() {
    const QTemporaryDir folder;
    const std::filesystem::path book = folder.path().toStdString();
    SocketInstance instance(book);
    Desktop desktop(false);
    ShellPorts ports = desktop.shellPorts(instance);
    ports.environment.captureLog = book / "capture.log";
    // No model is asked, whatever the user of this machine has chosen.
    MemoryPreferenceStore preferences;
    NullKeychain keychain(ports.environment.mainQueue);
    AppSettings settings(preferences, keychain, AppSettings::standardKeychainAccount);
    AppEnvironment env(book, settings, AppEnvironment::defaultDictionaryPath(), ports.environment);
    PopupTrial trial(env, ports, [](const std::string& line) { std::cout << line << std::endl; });
    const QSocketNotifier commands(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&commands, &QSocketNotifier::activated, [&trial] {
        // One line at a time, as the other side waits for each answer.
        std::string command;
        if (std::getline(std::cin, command))
            trial.handle(command);
        else
            QApplication::quit();
    });
    return QApplication::exec();
}

} // namespace
} // namespace tavik

int main(int argumentCount, char** arguments) {
    try {
        // As the program has it: it costs time and memory.
        qputenv("QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1");
        const QApplication application(argumentCount, arguments);
        QApplication::setQuitOnLastWindowClosed(false);
        QApplication::setFont(tavik::uiFont(tavik::FontSizes::body));
        return tavik::run();
    } catch (const std::exception& error) {
        std::cerr << "tavik-popup-trial: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
