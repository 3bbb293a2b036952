#pragma once

#include "App/Support/FakeAccessibility.h"
#include "App/Support/FakeHotKeyRegistrar.h"
#include "App/Support/FakePasteboard.h"
#include "App/Support/Fakes.h"
#include "Environment/AppEnvironment.h"
#include "Platform/Null/MemoryPreferenceStore.h"
#include "Shell/AppDelegate.h"
#include "Support/Book.h"
#include "Support/TemporaryDirectory.h"

#include <chrono>
#include <filesystem>
#include <thread>
#include <utility>

namespace tavik::test {

/// The application's side of a desktop that does what the test says, and settings of its own.
struct FakeDesktop {
    EnvironmentPorts environmentPorts() {
        return {queue,
                speech,
                notifier,
                accessibility,
                trust,
                workspace,
                pasteboard,
                processes,
                appearance,
                timers,
                [this] { return now; },
                [this] { return calendar; },
                directory.file("capture.log")};
    }

    /// Time passes, on the clock too.
    void pass(std::chrono::duration<double> time) {
        timers.advance(time, [this](std::chrono::duration<double> part) { now += part; });
    }

    ShellPorts shellPorts() {
        return {environmentPorts(), {&tray}, wakeSignal, instance, hotKeys, windows, mouse};
    }

    /// Runs what comes to the main thread until `isDone`, for ten seconds at most.
    template<typename Condition>
    bool runUntil(Condition isDone) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (!isDone()) {
            if (std::chrono::steady_clock::now() > end) return false;
            queue.runAll();
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return true;
    }

    TemporaryDirectory directory;
    Date now = day(1);
    ManualMainQueue queue;
    RecordingSpeech speech;
    RecordingNotifier notifier;
    FakeAccessibility accessibility;
    FakeAccessibilityTrust trust;
    FakeWorkspace workspace;
    FakePasteboard pasteboard;
    FakeProcesses processes;
    FakeAppearance appearance;
    FakeTimers timers;
    Calendar calendar{"Asia/Shanghai"};
    FakeTrayHost tray;
    FakeWakeSignal wakeSignal;
    FakeSingleInstance instance;
    FakeHotKeyRegistrar hotKeys;
    FakeWindowSystem windows;
    FakeMouse mouse;
    MemoryPreferenceStore preferences;
    FakeKeychain keychain;
    AppSettings settings{preferences, keychain, AppSettings::standardKeychainAccount};
};

} // namespace tavik::test
