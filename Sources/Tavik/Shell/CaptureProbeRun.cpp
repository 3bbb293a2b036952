#include "Shell/CaptureProbeRun.h"

#include "Capture/CaptureProbe.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>
#include <chrono>
#include <exception>
#include <memory>
#include <stop_token>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace tavik {
namespace {

using namespace std::chrono_literals;
using Accessibility = CaptureProbeReport::Accessibility;
using Clock = std::chrono::steady_clock;

constexpr auto switchLimit = 1500ms;
/// For programs to notice that accessibility is on, and to introduce themselves.
constexpr auto whileProgramsNotice = 800ms;

/// For the main thread.
class Run : public std::enable_shared_from_this<Run> {
public:
    explicit Run(const EnvironmentPorts& ports) : ports(ports) {}

    std::optional<CaptureProbeReport> exec() {
        const auto start = Clock::now();
        subscription = ports.accessibilityTrust.state().observe([this](const State& state) {
            QTimer::singleShot(0, &timer, [this, state] { follow(state); });
        });
        QTimer::singleShot(0, &timer, [this] { follow(ports.accessibilityTrust.state().value()); });
        QCoreApplication::exec();
        phase = Phase::ended;
        const bool isRestored = restore();
        if (!outcome) return std::nullopt;
        if (outcome->failure) std::rethrow_exception(outcome->failure);
        const std::chrono::duration<double, std::milli> time = Clock::now() - start;
        return CaptureProbeReport{accessibility(isRestored), std::move(outcome->applications),
                                  time.count()};
    }

private:
    using State = AccessibilityTrust::State;

    struct Outcome {
        std::vector<ProbeRecord> applications;
        /// Kept till accessibility is as it was.
        std::exception_ptr failure;
    };

    enum class Phase { asking, switchingOn, settling, probing, ended };

    void follow(State state) {
        if (phase == Phase::asking && state == State::trusted) probe(true);
        if (phase == Phase::asking && state == State::notTrusted) switchOn();
        if (phase == Phase::switchingOn && state == State::trusted) settle();
    }

    void switchOn() {
        phase = Phase::switchingOn;
        hasEnabled = true;
        trustedSince = ports.now();
        ports.accessibilityTrust.enable();
        QTimer::singleShot(switchLimit, &timer, [this] {
            if (phase == Phase::switchingOn) probe(false);
        });
    }

    void settle() {
        phase = Phase::settling;
        QTimer::singleShot(whileProgramsNotice, &timer, [this] {
            if (phase == Phase::settling) probe(true);
        });
    }

    void probe(bool isTrusted) {
        phase = Phase::probing;
        isReachable = isTrusted;
        const CaptureProbe probe({ports.accessibility, ports.workspace, ports.pasteboard,
                                  ports.processes, isTrusted, trustedSince});
        try {
            worker = std::jthread([probe, &queue = ports.mainQueue,
                                   weak = weak_from_this()](const std::stop_token& stop) {
                queue.post([weak, outcome = outcomeOf(probe, stop)]() mutable {
                    if (const auto self = weak.lock()) self->finish(std::move(outcome));
                });
            });
        } catch (const std::system_error&) {
            finish({{}, std::current_exception()});
        }
    }

    static Outcome outcomeOf(const CaptureProbe& probe, const std::stop_token& stop) {
        try {
            return {probe.run(stop), nullptr};
        } catch (const std::exception&) {
            return {{}, std::current_exception()};
        }
    }

    void finish(Outcome found) {
        outcome = std::move(found);
        QCoreApplication::quit();
    }

    /// Whether accessibility is as it was.
    bool restore() {
        if (!hasEnabled) return true;
        const auto isDone = std::make_shared<bool>(false);
        const auto loop = std::make_shared<QEventLoop>();
        ports.accessibilityTrust.restore([isDone, weak = std::weak_ptr(loop)] {
            *isDone = true;
            if (const auto waiting = weak.lock()) waiting->quit();
        });
        QTimer::singleShot(switchLimit, loop.get(), &QEventLoop::quit);
        if (!*isDone) loop->exec();
        return *isDone;
    }

    Accessibility accessibility(bool isRestored) const {
        if (!isReachable) return Accessibility::unreachable;
        if (!hasEnabled) return Accessibility::on;
        return isRestored ? Accessibility::borrowed : Accessibility::leftOn;
    }

    const EnvironmentPorts& ports;
    QTimer timer;
    Subscription subscription;
    Phase phase = Phase::asking;
    bool hasEnabled = false;
    bool isReachable = false;
    std::optional<Date> trustedSince;
    std::optional<Outcome> outcome;
    std::jthread worker;
};

} // namespace

std::optional<CaptureProbeReport> runCaptureProbe(const EnvironmentPorts& ports) {
    return std::make_shared<Run>(ports)->exec();
}

} // namespace tavik
