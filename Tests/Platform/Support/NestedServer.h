#pragma once

#include "Platform/Support/Daemon.h"
#include "Support/TemporaryDirectory.h"

#include <QByteArray>
#include <optional>
#include <string>
#include <vector>

namespace tavik::test {

/// An X server that $DISPLAY names until the object goes.
class NestedServer {
public:
    explicit NestedServer(const std::string& options = "") : usual(qgetenv("DISPLAY")) {
        const std::string command = "exec Xvfb -displayfd 1 -nolisten tcp -noreset " + options;
        server.emplace(std::vector<std::string>{"/bin/sh", "-c", command + " 2>/dev/null"},
                       folder.file("display"));
        std::string number = awaitText("\n", folder.file("display"));
        number.pop_back();
        qputenv("DISPLAY", (":" + number).c_str());
    }

    ~NestedServer() { qputenv("DISPLAY", usual); }

    NestedServer(const NestedServer&) = delete;
    NestedServer& operator=(const NestedServer&) = delete;

    void signal(int number) const { server->signal(number); }

    void end() { server.reset(); }

private:
    TemporaryDirectory folder;
    QByteArray usual;
    std::optional<BackgroundProgram> server;
};

} // namespace tavik::test
