#pragma once

#include "Ports/MainQueue.h"

#include <memory>

namespace tavik {

/// The main queue of a program that runs a Qt event loop. To be made and destroyed on the main
/// thread, once the application object exists.
///
/// Tasks wait in a queue of our own behind a mutex, and Qt's loop only gets an empty wake-up: what
/// one thread hands to another passes through code that sanitizers see.
class QtMainQueue final : public MainQueue {
public:
    QtMainQueue();
    ~QtMainQueue() override;
    QtMainQueue(const QtMainQueue&) = delete;
    QtMainQueue& operator=(const QtMainQueue&) = delete;

    void post(Task task) override;

private:
    class Waker;

    std::unique_ptr<Waker> waker;
};

} // namespace tavik
