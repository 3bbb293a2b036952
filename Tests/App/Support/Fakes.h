#pragma once

#include "Ports/AccessibilityTrust.h"
#include "Ports/Keychain.h"
#include "Ports/MainQueue.h"
#include "Ports/Notifier.h"
#include "Ports/SingleInstance.h"
#include "Ports/SpeechSynthesizer.h"
#include "Ports/TrayHost.h"
#include "Ports/WakeSignal.h"

#include <functional>
#include <map>
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
    void notify(const std::string& title, const std::string& body) override {
        notifications.emplace_back(title, body);
    }

    std::vector<std::pair<std::string, std::string>> notifications;
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

class FakeSingleInstance final : public SingleInstance {
public:
    bool claim() override { return true; }

    bool showRunning() override { return false; }

    void setOnShow(std::function<void()> onShow) override { show = std::move(onShow); }

    std::function<void()> show;
};

} // namespace tavik::test
