#include "Reminders/ReminderManager.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace tavik {
namespace {

/// For the counts to be taken when the cards of the fire date are surely due.
constexpr std::chrono::seconds refreshDelay{5};
constexpr std::chrono::seconds testDelay{1};
/// By how much a clock may go back and still be believed to come again to where it was.
constexpr std::chrono::hours believableSetback{48};
/// How long a time is searched for the last fire date; there is one each day.
constexpr std::chrono::hours longestSearch{72};

} // namespace

ReminderManager::ReminderManager(ReminderHost& env, ReminderPorts ports)
    : env(env), ports(std::move(ports)), time(chosenTime()) {
    this->ports.notifier.setOnResponse([this](const std::string& identifier) {
        if (identifier == requestIdentifier || identifier == testIdentifier) openReview();
    });
}

ReminderManager::~ReminderManager() {
    ports.notifier.setOnResponse({});
}

void ReminderManager::openReview() {
    if (onOpenReview) onOpenReview();
}

void ReminderManager::requestAuthorization(std::function<void(bool isGranted)> completion) {
    authorizationStatus(
        [this, completion = std::move(completion)](Notifier::AuthorizationStatus status) {
            reschedule(ports.now());
            if (completion) completion(status == Notifier::AuthorizationStatus::authorized);
        });
}

void ReminderManager::authorizationStatus(
    std::function<void(Notifier::AuthorizationStatus)> completion) {
    ports.notifier.authorizationStatus(
        [weak = std::weak_ptr(self),
         completion = std::move(completion)](Notifier::AuthorizationStatus status) {
            if (!weak.expired()) completion(status);
        });
}

void ReminderManager::reschedule(Date now) {
    showIfDue(now);
    followChosenTime(now);
    makePlan(now);
    awaitFireDate(now);
    timer =
        ports.timers.after(nextFireDate(now) + refreshDelay - now, [this] { env.refreshCounts(); });
}

ReminderManager::TimeOfDay ReminderManager::chosenTime() const {
    const AppSettings& settings = env.settings();
    return {settings.reminderHour.value(), settings.reminderMinute.value()};
}

Date ReminderManager::nextFireDate(Date after) const {
    return ReminderPlanner::nextFireDate(after, time.hour, time.minute, ports.calendar());
}

/// A moment far ahead comes of a clock that was wrong then, or is wrong now. It is neither believed
/// nor forgotten.
Date ReminderManager::handledUntil(Date now) {
    const Date kept = dateFromSeconds(env.settings().remindedUntil.value());
    if (kept > Date() && kept <= now + believableSetback) {
        assumedHandledUntil.reset();
        return kept;
    }
    if (!assumedHandledUntil || *assumedHandledUntil > now + believableSetback)
        assumedHandledUntil = now;
    return *assumedHandledUntil;
}

void ReminderManager::setHandledUntil(Date moment) {
    env.settings().remindedUntil.set(secondsSince1970(moment));
}

/// The last fire date that has come and was not dealt with.
std::optional<Date> ReminderManager::missedFireDate(Date now) {
    std::optional<Date> missed;
    Date fireDate = nextFireDate(std::max(handledUntil(now), now - longestSearch));
    while (fireDate <= now) {
        missed = fireDate;
        fireDate = nextFireDate(fireDate);
    }
    return missed;
}

/// The reminder says what is true when it is shown, however late that is. While the book cannot be
/// read, it waits.
void ReminderManager::showIfDue(Date now) {
    const auto fireDate = missedFireDate(now);
    if (!fireDate) return;
    const auto dueThen = env.dueCount(*fireDate);
    const auto dueNow = env.dueCount(now);
    if (!dueThen || !dueNow) return;
    setHandledUntil(now);
    if (env.settings().reminderEnabled.value() && *dueThen > 0 && *dueNow > 0)
        ports.notifier.notify(notification(requestIdentifier, ReminderPlanner::body(*dueNow)));
}

/// Another time of day holds from now on: what it was earlier today is nothing that was missed.
void ReminderManager::followChosenTime(Date now) {
    if (std::exchange(time, chosenTime()) == chosenTime()) return;
    setHandledUntil(std::max(now, handledUntil(now)));
}

void ReminderManager::makePlan(Date now) {
    plan.reset();
    if (env.settings().reminderEnabled.value())
        plan = ReminderPlanner::plan(
            now, time.hour, time.minute, [this](Date at) { return env.dueCount(at).value_or(0); },
            ports.calendar());
    const bool isPending = plan && plan->fireDate > handledUntil(now);
    pending = isPending ? std::optional(plan->fireDate) : std::nullopt;
    // From now on it will be known that there was something to be reminded of.
    if (pending && env.settings().remindedUntil.value() == 0) setHandledUntil(now);
}

void ReminderManager::awaitFireDate(Date now) {
    fireTimer = Subscription();
    if (!pending) return;
    fireTimer = ports.timers.after(*pending - now, [this] {
        const Date present = ports.now();
        if (present < *pending) return awaitFireDate(present);
        pending.reset();
        showIfDue(present);
    });
}

Notification ReminderManager::notification(const char* identifier, std::string body) {
    return {.title = ReminderPlanner::title,
            .body = std::move(body),
            .identifier = identifier,
            .category = category,
            .action = actionTitle,
            .hasSound = true};
}

void ReminderManager::sendTestNotification() {
    const std::int64_t count = env.dueCount(ports.now()).value_or(0);
    std::string body = count < 1 ? "测试通知：提醒功能工作正常。"
                                 : "今天有 " + std::to_string(count) + " 个生词该复习了。";
    testTimer = ports.timers.after(testDelay, [this, body = std::move(body)] {
        ports.notifier.notify(notification(testIdentifier, body));
    });
}

} // namespace tavik
