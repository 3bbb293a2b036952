#pragma once

#include "Base/Calendar.h"
#include "Base/Date.h"
#include "Base/Published.h"
#include "Learning/ReminderPlanner.h"
#include "Ports/Notifier.h"
#include "Ports/Timers.h"
#include "Reminders/ReminderHost.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace tavik {

/// What the reminders ask of the outside world; all of it must outlive them.
struct ReminderPorts {
    Notifier& notifier;
    Timers& timers;
    std::function<Date()> now;
    std::function<Calendar()> calendar;
};

/// Turns the plan of the daily reminder into one notification a day, and opens the review when the
/// user answers it. For the main thread.
///
/// The desktop shows notifications but does not keep them for later: the one that is pending is
/// ours. It is shown at its fire date, or as soon after that as anyone plans again: be it that the
/// machine slept, that the clock was set, that the book could not be read, or that the program did
/// not run. The settings keep the moment up to which fire dates have been dealt with, so that none
/// is shown twice, also when the clock goes back behind it.
class ReminderManager {
public:
    static constexpr const char* requestIdentifier = "tavik.daily-review";
    static constexpr const char* testIdentifier = "tavik.test";
    static constexpr const char* category = "tavik.review";
    static constexpr const char* actionTitle = "开始复习";

    /// The host must outlive the reminders.
    ReminderManager(ReminderHost& env, ReminderPorts ports);
    ~ReminderManager();
    ReminderManager(const ReminderManager&) = delete;
    ReminderManager& operator=(const ReminderManager&) = delete;

    /// This desktop asks nobody for permission: plans again and hands over whether notifications
    /// will be shown.
    void requestAuthorization(std::function<void(bool isGranted)> completion = {});

    void authorizationStatus(std::function<void(Notifier::AuthorizationStatus)> completion);

    /// Plans the next reminder in place of the one that is pending, which is shown first if its
    /// time has come.
    void reschedule(Date now);

    /// Shows one a second later.
    void sendTestNotification();

    /// Of the last planning; nothing when no reminder was planned.
    const std::optional<ReminderPlanner::Plan>& lastPlan() const { return plan; }

    /// When the pending reminder is due to be shown.
    std::optional<Date> pendingFireDate() const { return pending; }

    /// Called when the user has answered a reminder.
    void setOnOpenReview(std::function<void()> handler) { onOpenReview = std::move(handler); }

private:
    struct TimeOfDay {
        int hour = 0;
        int minute = 0;

        bool operator==(const TimeOfDay&) const = default;
    };

    static Notification notification(const char* identifier, std::string body);
    TimeOfDay chosenTime() const;
    Date nextFireDate(Date after) const;
    Date handledUntil(Date now);
    void setHandledUntil(Date moment);
    std::optional<Date> missedFireDate(Date now);
    void showIfDue(Date now);
    void followChosenTime(Date now);
    void makePlan(Date now);
    void awaitFireDate(Date now);
    void openReview();

    ReminderHost& env;
    ReminderPorts ports;
    std::function<void()> onOpenReview;
    TimeOfDay time;
    std::optional<ReminderPlanner::Plan> plan;
    std::optional<Date> pending;
    /// In the place of what the settings keep, while that makes no sense.
    std::optional<Date> assumedHandledUntil;
    Subscription timer;
    Subscription fireTimer;
    Subscription testTimer;
    /// Gone when no answer may come any more.
    std::shared_ptr<void> self = std::make_shared<char>();
};

} // namespace tavik
