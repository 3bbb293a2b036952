#include "Platform/Support/PrivateBus.h"

#include <cstdlib>
#include <stdexcept>

namespace tavik::test {
namespace {

std::vector<std::string> joined(std::vector<std::string> front,
                                const std::vector<std::string>& back) {
    front.insert(front.end(), back.begin(), back.end());
    return front;
}

std::vector<std::string> tool(const std::string& name, const std::vector<std::string>& words) {
    return joined({TAVIK_DESKTOP_TOOLS "/" + name}, words);
}

/// The configuration of a bus with one more folder of what it can start.
std::string withServices(std::string configuration, const std::string& services) {
    const std::string end = "</busconfig>";
    return configuration.replace(configuration.rfind(end), std::string::npos,
                                 "<servicedir>" + services + "</servicedir>\n" + end);
}

} // namespace

PrivateBus::PrivateBus() {
    const char* session = std::getenv("TAVIK_SESSION");
    if (session == nullptr) throw std::runtime_error("run this by Tools/Desktop/session");
    std::filesystem::create_directory(folder.file("services"));
    writeFile(folder.file("bus.conf"),
              withServices(readFile(std::string(session) + "/bus.conf"), folder.file("services")));
    daemon = std::make_unique<BackgroundProgram>(
        std::vector<std::string>{"dbus-daemon", "--config-file=" + folder.file("bus.conf"),
                                 "--address=" + address(), "--nofork", "--nopidfile", "--nosyslog",
                                 "--print-address"},
        folder.file("output"));
    // It tells its address once it accepts connections, which is later than its socket exists.
    awaitText(address(), folder.file("output"));
}

PrivateBus::Program PrivateBus::start(const std::vector<std::string>& command,
                                      const std::string& name) const {
    auto program = std::make_unique<BackgroundProgram>(onThisBus(command));
    waitFor({"bus-name", name});
    return program;
}

void PrivateBus::makeStartable(const std::vector<std::string>& command,
                               const std::string& name) const {
    std::string service = "[D-BUS Service]\nName=" + name + "\nExec=";
    for (const std::string& word : command)
        service += word + ' ';
    writeFile(folder.path() / "services" / (name + ".service"), service + '\n');
    tell("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus.ReloadConfig", {});
}

PrivateBus::Program PrivateBus::startDaemon(const std::vector<std::string>& words) const {
    auto program = std::make_unique<BackgroundProgram>(onThisBus(tool("daemon", words)));
    waitFor(words);
    return program;
}

PrivateBus::Program PrivateBus::startMock(const std::string& name, const std::string& path,
                                          const std::string& interface) const {
    return start({"/usr/bin/python3", "-m", "dbusmock", name, path, interface}, name);
}

std::string PrivateBus::tell(const std::string& name, const std::string& path,
                             const std::string& method,
                             const std::vector<std::string>& arguments) const {
    const auto result =
        runProcess(joined({"/usr/bin/gdbus", "call", "--address", address(), "--dest", name,
                           "--object-path", path, "--method", method, "--"},
                          arguments));
    if (result.exitCode != 0) throw std::runtime_error(result.errors);
    return result.output;
}

std::vector<std::string> PrivateBus::onThisBus(const std::vector<std::string>& command) const {
    return joined({"/usr/bin/env", "DBUS_SESSION_BUS_ADDRESS=" + address(),
                   "DBUS_SYSTEM_BUS_ADDRESS=" + address(),
                   "XDG_RUNTIME_DIR=" + folder.path().string()},
                  command);
}

void PrivateBus::waitFor(const std::vector<std::string>& words) const {
    const auto waited = runProcess(onThisBus(tool("wait-for", words)));
    if (waited.exitCode != 0) throw std::runtime_error(waited.errors);
}

} // namespace tavik::test
