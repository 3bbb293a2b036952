#pragma once

#include <functional>
#include <string>

namespace tavik {

struct Notification {
    std::string title;
    std::string body;
    /// One that is shown takes the place of an earlier one with the same identifier; one without
    /// stands for itself.
    std::string identifier = {};
    /// What the desktop may treat alike.
    std::string category = {};
    /// The text of a button. With it the notification can be answered, by the button or by a click
    /// on the whole; without it it can only be read.
    std::string action = {};
    bool hasSound = false;

    bool operator==(const Notification&) const = default;
};

/// Shows the desktop's notifications. For the main thread; every operation returns at once, and
/// where the desktop has no notifications nothing is shown.
class Notifier {
public:
    enum class AuthorizationStatus {
        authorized,
        /// Also where nobody is there to show anything.
        denied,
    };

    virtual ~Notifier() = default;

    /// One with an identifier that nobody could show is shown by a service that comes later.
    virtual void notify(const Notification& notification) = 0;

    /// Hands over later whether notifications will be shown; in two seconds at the latest, unless
    /// the notifier goes first.
    virtual void authorizationStatus(std::function<void(AuthorizationStatus)> done) = 0;

    /// Called on the main thread with the identifier of a notification that the user has answered.
    /// Replaces an earlier handler; an empty one ends the calls.
    virtual void setOnResponse(std::function<void(const std::string& identifier)> handler) = 0;
};

} // namespace tavik
