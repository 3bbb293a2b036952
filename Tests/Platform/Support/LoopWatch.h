#pragma once

#include <chrono>
#include <functional>

namespace tavik::test {

/// How long the main thread may be held up.
#ifdef __SANITIZE_THREAD__
// It stops all threads for each library that is loaded, to read where its code lies.
constexpr std::chrono::milliseconds atOnce{500};
#else
constexpr std::chrono::milliseconds atOnce{50};
#endif

/// Runs the main loop with a timer of 5 ms and sees how long it was held up. The time in which the
/// thread could have run but the machine was busy with others is left out of account.
class LoopWatch {
public:
    /// Runs the loop until `isDone`, at most for `limit`. Returns whether it was done.
    bool runUntil(const std::function<bool()>& isDone,
                  std::chrono::milliseconds limit = std::chrono::seconds(10));
    void runFor(std::chrono::milliseconds time);

    /// Does what the test itself waits for, which is not counted.
    template<typename Work>
    auto aside(Work work) {
        turn();
        const Resumption resumption(*this);
        return work();
    }

    /// The time that a piece of work takes on this thread, counted in the same way.
    template<typename Work>
    static std::chrono::milliseconds ownTimeOf(Work work) {
        const Moment start = Moment::now();
        work();
        return start.timeUntil(Moment::now());
    }

    /// The longest time so far from one turn of the loop to the next: what was done in between
    /// counts.
    std::chrono::milliseconds longestGap() const { return longest; }

private:
    using Clock = std::chrono::steady_clock;

    struct Moment {
        /// Of the calling thread.
        static Moment now();

        std::chrono::milliseconds timeUntil(const Moment& later) const;

        Clock::time_point time;
        /// How long the thread has waited for a processor so far.
        std::chrono::nanoseconds waited{0};
    };

    struct Resumption {
        explicit Resumption(LoopWatch& watch) : watch(watch) {}

        ~Resumption() { watch.last = Moment::now(); }

        Resumption(const Resumption&) = delete;
        Resumption& operator=(const Resumption&) = delete;

        LoopWatch& watch;
    };

    void turn();

    Moment last = Moment::now();
    std::chrono::milliseconds longest{0};
};

} // namespace tavik::test
