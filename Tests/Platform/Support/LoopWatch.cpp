#include "Platform/Support/LoopWatch.h"

#include <QEventLoop>
#include <QTimer>
#include <algorithm>
#include <cstdint>
#include <fstream>

namespace tavik::test {

LoopWatch::Moment LoopWatch::Moment::now() {
    std::int64_t busy = 0;
    std::int64_t waited = 0;
    // A kernel without this file counts nothing.
    std::ifstream("/proc/thread-self/schedstat") >> busy >> waited;
    return {Clock::now(), std::chrono::nanoseconds(waited)};
}

std::chrono::milliseconds LoopWatch::Moment::timeUntil(const Moment& later) const {
    return std::chrono::duration_cast<std::chrono::milliseconds>(later.time - time
                                                                 - (later.waited - waited));
}

bool LoopWatch::runUntil(const std::function<bool()>& isDone, std::chrono::milliseconds limit) {
    const auto deadline = Clock::now() + limit;
    bool wasDone = false;
    QEventLoop loop;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &loop, [&] {
        turn();
        wasDone = isDone();
        if (wasDone || Clock::now() > deadline) loop.quit();
    });
    timer.setTimerType(Qt::PreciseTimer);
    timer.start(std::chrono::milliseconds(5));
    loop.exec();
    return wasDone;
}

void LoopWatch::runFor(std::chrono::milliseconds time) {
    runUntil([] { return false; }, time);
}

void LoopWatch::turn() {
    const Moment now = Moment::now();
    longest = std::max(longest, last.timeUntil(now));
    last = now;
}

} // namespace tavik::test
