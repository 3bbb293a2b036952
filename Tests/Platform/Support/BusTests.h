#pragma once

#include "Platform/Linux/DBus/BusConnection.h"
#include "Platform/Qt/QtMainQueue.h"
#include "Platform/Support/LoopWatch.h"
#include "Platform/Support/PrivateBus.h"

#include <gtest/gtest.h>

#include <csignal>
#include <memory>
#include <optional>

namespace tavik::test {

/// Tests of what talks to a bus. In each of them, whatever state the bus is in, the main thread is
/// never held up, and everything ends at once.
class BusTests : public testing::Test {
protected:
    /// Whatever has waited since the loop last ran is the end of the test's own programs.
    void TearDown() override {
        EXPECT_LT(watch.longestGap(), atOnce);
        const auto time = LoopWatch::ownTimeOf([this] {
            letGo();
            connection.reset();
            thread.reset();
        });
        EXPECT_LT(time, atOnce);
    }

    /// Ends what is tested.
    virtual void letGo() {}

    std::shared_ptr<BusConnection> open() {
        connection = BusConnection::open(*thread, bus.address());
        return connection;
    }

    bool runUntil(const std::function<bool()>& isDone) { return watch.runUntil(isDone); }

    /// Time in which what must not happen would have happened.
    void runForAWhile() { watch.runFor(std::chrono::milliseconds(200)); }

    /// What the test itself waits for does not count as holding up the main thread.
    template<typename Action>
    auto apart(Action action) {
        return watch.aside(action);
    }

    PrivateBus::Program startDaemon(const std::vector<std::string>& words) {
        return apart([&] { return bus.startDaemon(words); });
    }

    void end(PrivateBus::Program& program) {
        apart([&] { program.reset(); });
    }

    PrivateBus bus;
    LoopWatch watch;
    QtMainQueue queue;
    std::optional<BusThread> thread{std::in_place};
    std::shared_ptr<BusConnection> connection;
};

} // namespace tavik::test
