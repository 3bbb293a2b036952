#pragma once

#include "Ports/MainQueue.h"
#include "Ports/SpeechSynthesizer.h"

#include <chrono>
#include <memory>
#include <vector>

namespace tavik {

/// Speaks by the desktop's speech-dispatcher, which is looked for, and started if need be, when
/// something is first to be said.
///
/// Its library waits without limit, so that a thread of its own does the work. While that is busy,
/// only the newest request waits. A thread that has been busy for too long is abandoned, and ends
/// itself when the library lets it go; the next `speak` starts another. With three of them
/// abandoned nothing can be said until one has ended. Destruction ends what is being said, and
/// waits for that for a few hundredths of a second only.
///
/// From the first `speak` on, SIGPIPE does not end the process any more.
class SpeechDispatcher final : public SpeechSynthesizer {
public:
    /// The queue must outlive this object. `patience` is how long a thread may be busy.
    explicit SpeechDispatcher(MainQueue& queue,
                              std::chrono::milliseconds patience = std::chrono::seconds(5));
    ~SpeechDispatcher() override;
    SpeechDispatcher(const SpeechDispatcher&) = delete;
    SpeechDispatcher& operator=(const SpeechDispatcher&) = delete;

    /// What is no text, and control characters, count as spaces; of a longer text than anyone would
    /// look up only the beginning is said.
    void speak(const std::string& text, const std::string& language, double rate) override;
    void stop() override;
    bool isAvailable() const override;

private:
    class Worker;

    bool isStuck() const;
    bool prepareWorker();

    MainQueue& queue;
    const std::chrono::milliseconds patience;
    /// Whether the last attempt worked, as told through the main queue.
    std::shared_ptr<bool> hasWorked = std::make_shared<bool>(true);
    std::shared_ptr<Worker> worker;
    std::vector<std::weak_ptr<Worker>> abandoned;
};

} // namespace tavik
