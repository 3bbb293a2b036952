#pragma once

#include "Ports/AccessibilityTrust.h"
#include "Ports/Appearance.h"
#include "Ports/Keychain.h"
#include "Ports/MainQueue.h"
#include "Ports/Mouse.h"
#include "Ports/Notifier.h"
#include "Ports/SingleInstance.h"
#include "Ports/SpeechSynthesizer.h"
#include "Ports/Timers.h"
#include "Ports/TrayHost.h"
#include "Ports/WakeSignal.h"
#include "Ports/WindowSystem.h"

#include <algorithm>
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace tavik::test {

/// Keeps what is posted until the test runs it, on the test's own thread.
class ManualMainQueue final : public MainQueue {
public:
    void post(Task task) override {
        const std::lock_guard guard(lock);
        waiting.push_back(std::move(task));
    }

    std::size_t size() {
        const std::lock_guard guard(lock);
        return waiting.size();
    }

    void runAll() {
        while (size() > 0) {
            std::vector<Task> tasks;
            {
                const std::lock_guard guard(lock);
                tasks.swap(waiting);
            }
            for (const Task& task : tasks)
                task();
        }
    }

private:
    std::mutex lock;
    std::vector<Task> waiting;
};

/// A key chain whose answers wait for the test.
class FakeKeychain final : public Keychain {
public:
    void get(const std::string& account, std::function<void(Answer)> done) override {
        answers.emplace_back([this, account, done = std::move(done)] {
            if (state != KeychainState::open || !secrets.contains(account))
                return done({std::nullopt, state});
            done({secrets.at(account), state});
        });
    }

    void set(const std::string& secret, const std::string& account,
             std::function<void(bool isKept)> done) override {
        answers.emplace_back([this, secret, account, done = std::move(done)] {
            secrets.erase(account);
            if (state == KeychainState::open && !secret.empty()) secrets[account] = secret;
            done(state == KeychainState::open);
        });
    }

    void finish(std::chrono::milliseconds /*limit*/) override { answers.clear(); }

    void answerAll() {
        for (auto& answer : std::exchange(answers, {}))
            answer();
    }

    std::map<std::string, std::string> secrets;
    KeychainState state = KeychainState::open;
    std::vector<std::function<void()>> answers;
};

class RecordingSpeech final : public SpeechSynthesizer {
public:
    void speak(const std::string& text, const std::string& language, double rate) override {
        calls.push_back(language + ' ' + std::to_string(rate).substr(0, 3) + ": " + text);
    }

    void stop() override { calls.emplace_back("stop"); }

    bool isAvailable() const override { return true; }

    std::vector<std::string> calls;
};

class RecordingNotifier final : public Notifier {
public:
    void notify(const Notification& notification) override {
        notifications.push_back(notification);
    }

    void authorizationStatus(std::function<void(AuthorizationStatus)> done) override {
        questions.push_back(std::move(done));
    }

    void setOnResponse(std::function<void(const std::string& identifier)> handler) override {
        respond = std::move(handler);
    }

    void answerAll(AuthorizationStatus status) {
        for (const auto& done : std::exchange(questions, {}))
            done(status);
    }

    std::vector<Notification> notifications;
    std::vector<std::function<void(AuthorizationStatus)>> questions;
    std::function<void(const std::string& identifier)> respond;
};

/// Time that passes when the test says so.
class FakeTimers final : public Timers {
public:
    using Seconds = std::chrono::duration<double>;

    Subscription after(Seconds delay, std::function<void()> task) override {
        auto kept = std::make_shared<std::function<void()>>(std::move(task));
        waiting.emplace(elapsed + std::max(delay, Seconds::zero()), kept);
        return Subscription(std::move(kept));
    }

    /// Calls what is due within `time`, in its order; `pass` is told of each bit of time before.
    void advance(Seconds time, const std::function<void(Seconds)>& pass) {
        const Seconds end = elapsed + time;
        while (!waiting.empty() && waiting.begin()->first <= end) {
            const auto [due, weak] = *waiting.begin();
            waiting.erase(waiting.begin());
            const auto task = weak.lock();
            if (!task) continue;
            pass(due - std::exchange(elapsed, due));
            (*task)();
        }
        pass(end - std::exchange(elapsed, end));
    }

private:
    Seconds elapsed{0};
    std::multimap<Seconds, std::weak_ptr<std::function<void()>>> waiting;
};

class FakeTrayHost final : public TrayHost {
public:
    const Published<Presence>& presence() const override { return current; }

    Published<Presence> current{Presence::absent};
};

class FakeWakeSignal final : public WakeSignal {
public:
    void setOnWake(std::function<void()> onWake) override { wake = std::move(onWake); }

    std::function<void()> wake;
};

class FakeAccessibilityTrust final : public AccessibilityTrust {
public:
    const Published<State>& state() const override { return current; }

    void enable() override { ++timesEnabled; }

    void restore(std::function<void()> done) override { done(); }

    Published<State> current{State::unknown};
    int timesEnabled = 0;
};

class FakeAppearance final : public Appearance {
public:
    const Published<bool>& prefersDark() const override { return dark; }

    Published<bool> dark{false};
};

/// Keeps what a popup asked of its window.
class FakeWindowSystem final : public WindowSystem {
public:
    std::vector<Screen> screens() override { return shown; }

    ScreenPoint pointer() override { return mouse; }

    bool hasCompositor() override { return isTranslucent; }

    void limitClicks(std::uint32_t /*window*/, const ScreenRect& part) override { clicks = part; }

    void takeKeyboard(std::uint32_t /*window*/) override { calls.emplace_back("take"); }

    void returnKeyboard(std::uint32_t /*window*/) override { calls.emplace_back("return"); }

    void bringToFront(std::uint32_t /*window*/) override { calls.emplace_back("front"); }

    std::vector<Screen> shown{{{0, 0, 1280, 800}, {0, 24, 1280, 776}, 1}};
    ScreenPoint mouse{640, 400};
    bool isTranslucent = true;
    ScreenRect clicks;
    std::vector<std::string> calls;
};

class FakeMouse final : public Mouse {
public:
    Subscription observePresses(PressHandler handler) override {
        auto kept = std::make_shared<PressHandler>(std::move(handler));
        observer = kept;
        return Subscription(std::move(kept));
    }

    bool isObserved() const { return !observer.expired(); }

    void press(ScreenPoint where) const {
        if (const auto present = observer.lock()) (*present)(where);
    }

private:
    std::weak_ptr<PressHandler> observer;
};

class FakeSingleInstance final : public SingleInstance {
public:
    bool claim() override { return true; }

    bool showRunning() override { return false; }

    void setOnShow(std::function<void()> onShow) override { show = std::move(onShow); }

    std::function<void()> show;
};

} // namespace tavik::test
