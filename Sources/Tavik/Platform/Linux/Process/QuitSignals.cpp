#include "Platform/Linux/Process/QuitSignals.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <QSocketNotifier>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <utility>

namespace tavik {
namespace {

constexpr std::array<int, 3> endingSignals{SIGTERM, SIGINT, SIGHUP};

// A handler has no other way to what it may use. Blocking the signals and reading them from a
// descriptor would need none, but the programs we start would inherit the blocking.
// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables)
volatile std::sig_atomic_t wakeUp = -1;

void onSignal(int /*number*/) {
    const int before = errno;
    const std::uint64_t one = 1;
    static_cast<void>(write(wakeUp, &one, sizeof one) == sizeof one);
    errno = before;
}

void handleWith(void (*handler)(int)) {
    struct sigaction action {};

    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    for (const int number : endingSignals)
        sigaction(number, &action, nullptr);
}

} // namespace

class QuitSignals::Notifier {
public:
    explicit Notifier(std::function<void()> onQuit)
        : descriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
          notifier(descriptor, QSocketNotifier::Read) {
        QObject::connect(&notifier, &QSocketNotifier::activated,
                         [this, onQuit = std::move(onQuit)] {
                             std::uint64_t count = 0;
                             if (read(descriptor, &count, sizeof count) == sizeof count) onQuit();
                         });
        wakeUp = descriptor;
        handleWith(onSignal);
    }

    ~Notifier() {
        handleWith(SIG_DFL);
        wakeUp = -1;
        notifier.setEnabled(false);
        close(descriptor);
    }

    Notifier(const Notifier&) = delete;
    Notifier& operator=(const Notifier&) = delete;

private:
    int descriptor;
    QSocketNotifier notifier;
};

QuitSignals::QuitSignals(std::function<void()> onQuit)
    : notifier(std::make_unique<Notifier>(std::move(onQuit))) {}

QuitSignals::~QuitSignals() = default;

} // namespace tavik
