#include "Platform/Qt/QtMainQueue.h"

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <deque>
#include <mutex>
#include <utility>

namespace tavik {

/// Lives on the main thread and runs a task each time it is woken: a task may run an event loop of
/// its own, in which the next ones must have their turn.
class QtMainQueue::Waker final : public QObject {
public:
    void add(Task task) {
        const std::lock_guard guard(lock);
        waiting.push_back(std::move(task));
        QCoreApplication::postEvent(this, new QEvent(QEvent::User)); // Qt deletes it.
    }

    bool event(QEvent* event) override {
        if (event->type() != QEvent::User) return QObject::event(event);
        next()();
        return true;
    }

private:
    Task next() {
        const std::lock_guard guard(lock);
        Task task = std::move(waiting.front());
        waiting.pop_front();
        return task;
    }

    std::mutex lock;
    std::deque<Task> waiting;
};

QtMainQueue::QtMainQueue() : waker(std::make_unique<Waker>()) {}

QtMainQueue::~QtMainQueue() = default;

void QtMainQueue::post(Task task) {
    waker->add(std::move(task));
}

} // namespace tavik
