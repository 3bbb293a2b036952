#include "Platform/Linux/Process/SocketInstance.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <QSocketNotifier>
#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

namespace tavik {
namespace fs = std::filesystem;

namespace {

constexpr const char* lockName = "tavik.lock";
constexpr const char* socketName = "tavik.socket";
constexpr char wish = 's';

/// A descriptor that is closed at the end of the scope.
class Descriptor {
public:
    explicit Descriptor(int number) : number(number) {}

    ~Descriptor() {
        if (number >= 0) close(number);
    }

    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int get() const { return number; }

    bool isOpen() const { return number >= 0; }

private:
    int number;
};

/// The address of the socket in a directory that is open as `folder`. Addresses have room for some
/// hundred bytes only, which a path of the user's may well exceed.
sockaddr_un addressIn(const Descriptor& folder) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string path = "/proc/self/fd/" + std::to_string(folder.get()) + '/' + socketName;
    std::ranges::copy(path, std::begin(address.sun_path));
    return address;
}

Descriptor opened(const fs::path& directory) {
    return Descriptor(open(directory.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
}

Descriptor newSocket() {
    return Descriptor(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
}

/// The form of an address that socket calls take.
const sockaddr* generic(const sockaddr_un& address) {
    return reinterpret_cast<const sockaddr*>(&address);
}

} // namespace

/// Takes the wishes of later processes.
class SocketInstance::Listener {
public:
    explicit Listener(const fs::path& directory)
        : socket(newSocket()), path(directory / socketName) {
        const Descriptor folder = opened(directory);
        std::error_code ignored;
        // We hold the lock, so that what is there was left by a process that is gone.
        fs::remove(path, ignored);
        const auto address = addressIn(folder);
        if (!folder.isOpen() || bind(socket.get(), generic(address), sizeof address) != 0) return;
        if (listen(socket.get(), SOMAXCONN) != 0) return;
        notifier = std::make_unique<QSocketNotifier>(socket.get(), QSocketNotifier::Read);
        QObject::connect(notifier.get(), &QSocketNotifier::activated, [this] { accept(); });
    }

    ~Listener() {
        notifier.reset();
        std::error_code ignored;
        fs::remove(path, ignored);
    }

    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    void setOnShow(std::function<void()> onShow) { this->onShow = std::move(onShow); }

private:
    /// Who can connect at all is the user, and connecting is the wish: what is sent is not read.
    void accept() {
        const Descriptor other(
            accept4(socket.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
        if (!other.isOpen()) return;
        // The answer by which the other process knows that it was heard.
        static_cast<void>(send(other.get(), &wish, 1, MSG_NOSIGNAL));
        if (onShow) onShow();
    }

    Descriptor socket;
    fs::path path;
    std::unique_ptr<QSocketNotifier> notifier;
    std::function<void()> onShow;
};

SocketInstance::SocketInstance(fs::path directory) : directory(std::move(directory)) {}

SocketInstance::~SocketInstance() {
    listener.reset();
    if (lock >= 0) close(lock);
}

bool SocketInstance::claim() {
    std::error_code ignored;
    fs::create_directories(directory, ignored);
    lock = open((directory / lockName).c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (lock >= 0 && flock(lock, LOCK_EX | LOCK_NB) != 0) {
        const bool isTaken = errno == EWOULDBLOCK;
        close(std::exchange(lock, -1));
        if (isTaken) return false;
    }
    if (lock >= 0) listener = std::make_unique<Listener>(directory);
    return true;
}

bool SocketInstance::showRunning() {
    using namespace std::chrono;
    const auto end = steady_clock::now() + seconds(1);
    const Descriptor folder = opened(directory);
    if (!folder.isOpen()) return false;
    const auto address = addressIn(folder);
    while (steady_clock::now() < end) {
        const Descriptor other = newSocket();
        if (connect(other.get(), generic(address), sizeof address) == 0) {
            pollfd answer{other.get(), POLLIN, 0};
            const auto left = duration_cast<milliseconds>(end - steady_clock::now()).count();
            char heard = 0;
            return poll(&answer, 1, static_cast<int>(std::max<std::int64_t>(left, 0))) == 1
                   && recv(other.get(), &heard, 1, 0) == 1 && heard == wish;
        }
        // The first process holds the lock a moment before it listens.
        std::this_thread::sleep_for(20ms);
    }
    return false;
}

void SocketInstance::setOnShow(std::function<void()> onShow) {
    if (listener) listener->setOnShow(std::move(onShow));
}

void SocketInstance::endListening() {
    listener.reset();
}

} // namespace tavik
