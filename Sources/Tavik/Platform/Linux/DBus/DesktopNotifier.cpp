#include "Platform/Linux/DBus/DesktopNotifier.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string_view>
#include <utility>

namespace tavik {
namespace {

constexpr std::chrono::seconds patience{2};

constexpr const char* applicationID = "com.tavik.app";
constexpr const char* soundName = "message-new-instant";

/// What the service tells when the whole notification was clicked.
constexpr const char* clickKey = "default";
constexpr const char* buttonKey = "start";

const BusObject service{"org.freedesktop.Notifications", "/org/freedesktop/Notifications",
                        "org.freedesktop.Notifications"};
const BusObject bus{"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus"};

using NotificationID = std::uint32_t;
constexpr NotificationID none = 0;

struct Capabilities {
    bool understandsMarkup = false;
    bool takesAnswers = false;
};

std::string escaped(const std::string& text) {
    std::string result;
    for (const char c : text) {
        if (c == '&')
            result += "&amp;";
        else if (c == '<')
            result += "&lt;";
        else if (c == '>')
            result += "&gt;";
        else
            result += c;
    }
    return result;
}

GVariant* actionsFor(const std::string& label) {
    GVariantBuilder actions;
    g_variant_builder_init(&actions, G_VARIANT_TYPE_STRING_ARRAY);
    if (!label.empty()) {
        // Some services show a button for the click as well, unless its label is empty.
        for (const char* word : {clickKey, "", buttonKey})
            g_variant_builder_add(&actions, "s", word);
        g_variant_builder_add(&actions, "s", validText(label).get());
    }
    return g_variant_builder_end(&actions);
}

GVariant* hintsFor(const Notification& notification) {
    GVariantBuilder hints;
    g_variant_builder_init(&hints, G_VARIANT_TYPE_VARDICT);
    const auto add = [&hints](const char* name, const char* value) {
        g_variant_builder_add(&hints, "{sv}", name, g_variant_new_string(value));
    };
    add("desktop-entry", applicationID);
    if (!notification.category.empty()) add("category", validText(notification.category).get());
    if (notification.hasSound) add("sound-name", soundName);
    return g_variant_builder_end(&hints);
}

VariantHandle argumentsFor(const Notification& notification, const Capabilities& capabilities,
                           NotificationID replaced) {
    constexpr gint32 serviceDecidesWhenToClose = -1;
    const std::string& body = notification.body;
    return ownedVariant(g_variant_new(
        "(susss@as@a{sv}i)", "Tavik", replaced, applicationID, validText(notification.title).get(),
        validText(capabilities.understandsMarkup ? escaped(body) : body).get(),
        actionsFor(capabilities.takesAnswers ? notification.action : std::string()),
        hintsFor(notification), serviceDecidesWhenToClose));
}

bool containsText(GVariant* texts, std::string_view wanted) {
    const gsize count = g_variant_n_children(texts);
    for (gsize index = 0; index < count; ++index) {
        const VariantHandle text(g_variant_get_child_value(texts, index));
        if (textOf(text.get()) == wanted) return true;
    }
    return false;
}

} // namespace

/// What the notifier's user has handed over. For the main thread.
struct DesktopNotifier::Handlers {
    std::function<void(const std::string& identifier)> onResponse;
    /// Those who wait for the status, by the number of their question.
    std::map<int, std::function<void(AuthorizationStatus)>> questions;
    int lastQuestion = 0;
};

/// Sends on the bus thread, one call after the other: only with the answer to one notification is
/// it known what the next has to replace.
class DesktopNotifier::Sender : public std::enable_shared_from_this<Sender> {
public:
    /// Does its work on the main thread, unless the notifier goes first.
    using Post = std::function<void(std::function<void(Handlers&)>)>;

    Sender(std::shared_ptr<BusConnection> session, Post post)
        : session(std::move(session)), post(std::move(post)) {}

    void begin() {
        ownerChanges =
            session->watchOwner(service.name, [this](const std::string& owner) { follow(owner); });
    }

    void notify(Notification notification) {
        const std::string& identifier = notification.identifier;
        if (!identifier.empty())
            for (auto* const earlier : {&waiting, &unshown})
                std::erase_if(*earlier, [&](const Notification& each) {
                    return each.identifier == identifier;
                });
        waiting.push_back(std::move(notification));
        advance();
    }

    void askForStatus(int question) {
        deadlines[question] = session->thread().runAfter(
            patience, [this, question] { conclude(question, AuthorizationStatus::denied); });
        session->whenReady([weak = weak_from_this(), question](bool) {
            if (const auto self = weak.lock()) self->askWhetherItRuns(question);
        });
    }

private:
    void follow(const std::string& present) {
        if (present == owner) return;
        // Who has gone may owe the answer for ever. Without an owner it is the new one who was
        // started by the call.
        if (!owner.empty()) giveUp();
        owner = present;
        capabilities.reset();
        shown.clear();
        answerable.clear();
        responses = owner.empty() ? BusSubscription() : subscribe();
        if (!owner.empty())
            for (Notification& notification : std::exchange(unshown, {}))
                add(std::move(notification));
        advance();
    }

    /// Unless a later one with the same identifier waits already.
    void add(Notification earlier) {
        if (std::ranges::none_of(waiting, [&](const Notification& later) {
                return later.identifier == earlier.identifier;
            }))
            waiting.push_back(std::move(earlier));
    }

    void giveUp() {
        underWay.reset();
        keepUnshown();
    }

    /// What nobody has shown is shown by whoever comes next, if it is worth a name.
    void keepUnshown() {
        if (sending && !sending->identifier.empty()) unshown.push_back(*std::move(sending));
        sending.reset();
    }

    /// By the owner's own name, so that nobody else can answer for the user.
    BusSubscription subscribe() {
        return session->subscribe({owner, service.path, service.interface}, "ActionInvoked", "",
                                  [this](GVariant* values) { takeResponse(values); });
    }

    void advance() {
        if (underWay || waiting.empty()) return;
        if (capabilities)
            send(*capabilities);
        else
            call("GetCapabilities", {}, "(as)",
                 [this](GVariant* answer) { takeCapabilities(answer); });
    }

    void call(const char* method, VariantHandle arguments, const char* answerType,
              std::function<void(GVariant*)> take) {
        underWay = std::make_shared<char>();
        session->call(service, method, std::move(arguments),
                      {.answerType = answerType, .activation = BusActivation::allowed},
                      [weak = weak_from_this(), asked = std::weak_ptr(underWay),
                       take = std::move(take)](const VariantHandle& answer) {
                          const auto self = weak.lock();
                          if (!self || asked.expired()) return;
                          self->underWay.reset();
                          take(answer.get());
                          self->advance();
                      });
    }

    /// Without an answer the first that waits is sent once, as plain text, and the next asks again.
    void takeCapabilities(GVariant* answer) {
        if (answer) {
            const VariantHandle names(g_variant_get_child_value(answer, 0));
            capabilities = {.understandsMarkup = containsText(names.get(), "body-markup"),
                            .takesAnswers = containsText(names.get(), "actions")};
        }
        send(capabilities.value_or(Capabilities()));
    }

    void send(const Capabilities& present) {
        sending = std::move(waiting.front());
        waiting.pop_front();
        const bool canBeAnswered = present.takesAnswers && !sending->action.empty();
        const auto earlier = shown.find(sending->identifier);
        VariantHandle arguments =
            argumentsFor(*sending, present, earlier == shown.end() ? none : earlier->second);
        call("Notify", std::move(arguments), "(u)", [this, canBeAnswered](GVariant* answer) {
            NotificationID id = none;
            if (!answer) return keepUnshown();
            g_variant_get(answer, "(u)", &id);
            remember(id, sending->identifier, canBeAnswered);
            sending.reset();
        });
    }

    void remember(NotificationID id, const std::string& identifier, bool canBeAnswered) {
        if (!identifier.empty()) answerable.erase(std::exchange(shown[identifier], id));
        if (canBeAnswered) answerable[id] = identifier;
    }

    /// Those that were closed are remembered too: some services tell of that before the answer.
    void takeResponse(GVariant* values) {
        if (!g_variant_is_of_type(values, G_VARIANT_TYPE("(us)"))) return;
        NotificationID id = none;
        const char* key = nullptr;
        g_variant_get(values, "(u&s)", &id, &key);
        const auto answered = answerable.find(id);
        const bool isKnown =
            std::string_view(key) == clickKey || std::string_view(key) == buttonKey;
        if (answered == answerable.end() || !isKnown) return;
        post([identifier = answered->second](const Handlers& handlers) {
            // A copy, for the handler may set another one.
            if (const auto handler = handlers.onResponse) handler(identifier);
        });
    }

    void askWhetherItRuns(int question) {
        session->call(bus, "NameHasOwner", ownedVariant(g_variant_new("(s)", service.name.c_str())),
                      {.answerType = "(b)"},
                      [weak = weak_from_this(), question](const VariantHandle& answer) {
                          gboolean isRunning = FALSE;
                          if (answer) g_variant_get(answer.get(), "(b)", &isRunning);
                          const auto self = weak.lock();
                          if (!self) return;
                          if (isRunning)
                              self->conclude(question, AuthorizationStatus::authorized);
                          else
                              self->askWhetherItCanBeStarted(question);
                      });
    }

    void askWhetherItCanBeStarted(int question) {
        session->call(bus, "ListActivatableNames", {}, {.answerType = "(as)"},
                      [weak = weak_from_this(), question](const VariantHandle& answer) {
                          const VariantHandle names(
                              answer ? g_variant_get_child_value(answer.get(), 0) : nullptr);
                          const bool isKnown = names && containsText(names.get(), service.name);
                          if (const auto self = weak.lock())
                              self->conclude(question, isKnown ? AuthorizationStatus::authorized
                                                               : AuthorizationStatus::denied);
                      });
    }

    /// Only the first conclusion counts.
    void conclude(int question, AuthorizationStatus status) {
        if (deadlines.erase(question) == 0) return;
        post([question, status](Handlers& handlers) {
            const auto answered = handlers.questions.extract(question);
            answered.mapped()(status);
        });
    }

    std::shared_ptr<BusConnection> session;
    Post post;
    std::deque<Notification> waiting;
    /// The one that the service has been asked to show.
    std::optional<Notification> sending;
    /// Those with identifiers that no service has taken.
    std::deque<Notification> unshown;
    /// Present while the service owes an answer; once it is gone, that answer does not count.
    std::shared_ptr<void> underWay;
    /// The program that shows notifications now; empty without one. What follows is about it.
    std::string owner;
    /// Empty until it was asked.
    std::optional<Capabilities> capabilities;
    /// The last notification with each identifier.
    std::map<std::string, NotificationID> shown;
    /// The identifiers of those that were sent with a button.
    std::map<NotificationID, std::string> answerable;
    /// When the questions that are open will be given up.
    std::map<int, SourceHandle> deadlines;
    BusSubscription responses;
    BusSubscription ownerChanges;
};

DesktopNotifier::DesktopNotifier(const std::shared_ptr<BusConnection>& session, MainQueue& queue)
    : session(session), handlers(std::make_shared<Handlers>()) {
    auto post = [&queue, weak = std::weak_ptr(handlers)](std::function<void(Handlers&)> work) {
        queue.post([weak, work = std::move(work)] {
            if (const auto present = weak.lock()) work(*present);
        });
    };
    sender = makeOn<Sender>(session->thread(), session, std::move(post));
    session->whenReady([weak = std::weak_ptr(sender)](bool) {
        if (const auto self = weak.lock()) self->begin();
    });
}

DesktopNotifier::~DesktopNotifier() = default;

void DesktopNotifier::notify(const Notification& notification) {
    session->whenReady([weak = std::weak_ptr(sender), notification](bool) {
        if (const auto self = weak.lock()) self->notify(notification);
    });
}

void DesktopNotifier::authorizationStatus(std::function<void(AuthorizationStatus)> done) {
    const int question = ++handlers->lastQuestion;
    handlers->questions[question] = std::move(done);
    session->thread().run([weak = std::weak_ptr(sender), question] {
        if (const auto self = weak.lock()) self->askForStatus(question);
    });
}

void DesktopNotifier::setOnResponse(std::function<void(const std::string& identifier)> handler) {
    handlers->onResponse = std::move(handler);
}

} // namespace tavik
