#pragma once

#include "Ports/SingleInstance.h"

#include <filesystem>
#include <functional>
#include <memory>

namespace tavik {

/// One process for each data directory: a lock file says who is first, and a socket beside it takes
/// the wish of later ones. The kernel releases the lock with its process, however that ends.
///
/// To be made and destroyed on the main thread. Where the directory cannot hold a lock, every
/// process counts as the first: whoever opens the data there will say what is wrong.
class SocketInstance final : public SingleInstance {
public:
    explicit SocketInstance(std::filesystem::path directory);
    ~SocketInstance() override;
    SocketInstance(const SocketInstance&) = delete;
    SocketInstance& operator=(const SocketInstance&) = delete;

    bool claim() override;
    bool showRunning() override;
    void setOnShow(std::function<void()> onShow) override;

    /// Takes no more wishes, but keeps the lock.
    void endListening();

private:
    class Listener;

    std::filesystem::path directory;
    std::unique_ptr<Listener> listener;
    int lock = -1;
};

} // namespace tavik
