#include "Platform/Linux/X11/X11Pasteboard.h"

#include "Platform/Linux/X11/DisplayThread.h"
#include "Platform/Linux/X11/X11Clipboard.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <utility>

namespace tavik {
namespace {

using Clock = X11Clipboard::Clock;

constexpr std::chrono::milliseconds saveLimit{1000};
constexpr std::chrono::milliseconds keysLimit{500};
constexpr std::chrono::milliseconds textLimit{500};
constexpr std::chrono::milliseconds farewellLimit{500};
/// For the display's thread, which keeps to the limits, to say so.
constexpr std::chrono::milliseconds slack{200};

} // namespace

/// Where the clipboard is lent, to one at a time. Lives as long as any loan.
class X11Pasteboard::Counter {
public:
    Counter() : display(clipboard) {}

    ~Counter() {
        if (!wasLent) return;
        ask<bool>(farewellLimit, [](X11Clipboard& board, const OpenDisplay&, auto until) {
            board.leaveBehind(until);
            return true;
        });
    }

    Counter(const Counter&) = delete;
    Counter& operator=(const Counter&) = delete;

    /// What `question`, which is put to the clipboard, a display and a moment by which to answer,
    /// returns; nothing when it came too late.
    template<typename T, typename Question>
    std::optional<T> ask(std::chrono::milliseconds limit, Question question) {
        const auto until = Clock::now() + limit;
        return display.ask<T>([board = clipboard, until, question = std::move(question)](
                                  const OpenDisplay& on) { return question(*board, on, until); },
                              limit + slack);
    }

    void end(const X11Clipboard::Loan& loan) {
        display.post([board = clipboard, loan](const OpenDisplay&) { board->end(loan); });
        // Mostly it is done at once, and nobody shall meet what was copied.
        display.ask<bool>([](const OpenDisplay&) { return true; }, slack);
        const std::lock_guard guard(lock);
        isLent = false;
        changed.notify_all();
    }

    std::optional<X11Clipboard::Loan> lend(const FrontApplication& application) {
        std::unique_lock guard(lock);
        if (!changed.wait_for(guard, saveLimit, [this] { return !isLent; })) return std::nullopt;
        isLent = true;
        guard.unlock();
        auto loan = ask<std::optional<X11Clipboard::Loan>>(saveLimit, [window = application.window](
                                                                          X11Clipboard& board,
                                                                          const OpenDisplay& on,
                                                                          auto until) {
                        return board.lend(on, window, until);
                    }).value_or(std::nullopt);
        guard.lock();
        isLent = loan.has_value();
        wasLent = wasLent || isLent;
        if (!isLent) changed.notify_all();
        return loan;
    }

private:
    std::mutex lock;
    std::condition_variable changed;
    bool isLent = false;
    bool wasLent = false;
    std::shared_ptr<X11Clipboard> clipboard = std::make_shared<X11Clipboard>();
    DisplayThread display;
};

class X11Pasteboard::Loan final : public PasteboardLoan {
public:
    Loan(std::shared_ptr<Counter> counter, X11Clipboard::Loan loan)
        : counter(std::move(counter)), loan(std::move(loan)) {}

    ~Loan() override { counter->end(loan); }

    Loan(const Loan&) = delete;
    Loan& operator=(const Loan&) = delete;

    bool copy() override {
        return counter
            ->ask<bool>(keysLimit, [loan = loan](X11Clipboard& board, const OpenDisplay&,
                                                 auto until) { return board.copy(loan, until); })
            .value_or(false);
    }

    bool awaitChange(std::chrono::milliseconds limit) override {
        return counter
            ->ask<bool>(limit, [loan = loan](X11Clipboard& board, const OpenDisplay&,
                                             auto until) { return board.awaitChange(loan, until); })
            .value_or(false);
    }

    std::optional<std::string> string() override {
        return counter
            ->ask<std::optional<std::string>>(
                textLimit, [loan = loan](X11Clipboard& board, const OpenDisplay&,
                                         auto until) { return board.string(loan, until); })
            .value_or(std::nullopt);
    }

private:
    std::shared_ptr<Counter> counter;
    X11Clipboard::Loan loan;
};

X11Pasteboard::X11Pasteboard() : counter(std::make_shared<Counter>()) {}

X11Pasteboard::~X11Pasteboard() = default;

std::unique_ptr<PasteboardLoan> X11Pasteboard::lend(const FrontApplication& application) {
    auto loan = counter->lend(application);
    if (!loan) return nullptr;
    return std::make_unique<Loan>(counter, *std::move(loan));
}

std::optional<std::string> X11Pasteboard::selectedString(const FrontApplication& application) {
    return counter
        ->ask<std::optional<std::string>>(
            textLimit,
            [window = application.window](X11Clipboard& board, const OpenDisplay& on, auto until) {
                return board.selectedString(on, window, until);
            })
        .value_or(std::nullopt);
}

} // namespace tavik
