#pragma once

#include "Platform/Support/Daemon.h"
#include "Support/ChildProcess.h"
#include "Support/TemporaryDirectory.h"

#include <memory>
#include <string>
#include <vector>

namespace tavik::test {

/// A message bus of one test, and the programs on it, for which it is the session's bus and the
/// machine's. It starts no program by itself but those of `makeStartable`.
class PrivateBus {
public:
    using Program = std::unique_ptr<BackgroundProgram>;

    PrivateBus();

    std::string address() const { return "unix:path=" + folder.file("bus"); }

    std::string file(const std::string& name) const { return folder.file(name); }

    void signal(int number) const { daemon->signal(number); }

    /// Ends the bus.
    void end() { daemon.reset(); }

    /// Starts a program and returns once it owns the name.
    Program start(const std::vector<std::string>& command, const std::string& name) const;

    /// Lets the bus start a program for whoever calls that name. It has to end by itself when the
    /// bus does; no word may hold spaces.
    void makeStartable(const std::vector<std::string>& command, const std::string& name) const;

    /// Starts a daemon of the private desktop and returns once it is ready.
    Program startDaemon(const std::vector<std::string>& words) const;

    /// A program that offers an object, to be furnished by `tell`.
    Program startMock(const std::string& name, const std::string& path,
                      const std::string& interface) const;

    /// Calls a method and returns what it answered, as text.
    std::string tell(const std::string& name, const std::string& path, const std::string& method,
                     const std::vector<std::string>& arguments) const;

private:
    std::vector<std::string> onThisBus(const std::vector<std::string>& command) const;
    void waitFor(const std::vector<std::string>& words) const;

    TemporaryDirectory folder;
    Program daemon;
};

} // namespace tavik::test
