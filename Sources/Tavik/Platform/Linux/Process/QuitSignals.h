#pragma once

#include <functional>
#include <memory>

namespace tavik {

/// Calls back on the main thread when the process is asked to end (SIGTERM, SIGINT, SIGHUP), so
/// that it ends in good order. One at a time; to be made and destroyed on the main thread.
class QuitSignals {
public:
    explicit QuitSignals(std::function<void()> onQuit);
    ~QuitSignals();
    QuitSignals(const QuitSignals&) = delete;
    QuitSignals& operator=(const QuitSignals&) = delete;

private:
    class Notifier;

    std::unique_ptr<Notifier> notifier;
};

} // namespace tavik
