#include "Platform/Qt/QtMainQueue.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <string>
#include <thread>
#include <vector>

namespace tavik {
namespace {

TEST(MainQueueTests, tasksOfEachThreadRunInTheirOrderOnTheMainThreadAndNeverWithinPost) {
    constexpr int tasksPerThread = 500;
    QtMainQueue queue;
    std::vector<int> first;
    std::vector<int> second;
    const auto mainThread = std::this_thread::get_id();
    const auto postAll = [&](std::vector<int>& seen) {
        for (int number = 0; number < tasksPerThread; ++number)
            queue.post([&seen, number, mainThread] {
                EXPECT_EQ(std::this_thread::get_id(), mainThread);
                seen.push_back(number);
            });
    };
    {
        const std::jthread other([&] { postAll(first); });
        postAll(second);
        EXPECT_TRUE(second.empty());
        while (first.size() + second.size() < std::size_t{2} * tasksPerThread)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }
    EXPECT_TRUE(std::ranges::is_sorted(first));
    EXPECT_TRUE(std::ranges::is_sorted(second));
}

TEST(MainQueueTests, aTaskThatRunsALoopOfItsOwnHoldsNoOtherUp) {
    QtMainQueue queue;
    std::string order;
    QEventLoop inner;
    queue.post([&] {
        order += "1(";
        queue.post([&] { inner.quit(); });
        inner.exec();
        order += ")";
    });
    queue.post([&] { order += "2"; });
    QCoreApplication::processEvents();
    EXPECT_EQ(order, "1(2)");
}

} // namespace
} // namespace tavik
