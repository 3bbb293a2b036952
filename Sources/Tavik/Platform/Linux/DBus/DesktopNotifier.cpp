#include "Platform/Linux/DBus/DesktopNotifier.h"

#include <optional>
#include <string_view>

namespace tavik {
namespace {

constexpr const char* applicationID = "com.tavik.app";

const BusObject service{"org.freedesktop.Notifications", "/org/freedesktop/Notifications",
                        "org.freedesktop.Notifications"};

struct Notification {
    std::string title;
    std::string body;
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

VariantHandle argumentsFor(const Notification& notification, bool understandsMarkup) {
    constexpr guint32 replacesNone = 0;
    constexpr gint32 serviceDecidesWhenToClose = -1;
    const std::string& body = notification.body;
    GVariantBuilder hints;
    g_variant_builder_init(&hints, G_VARIANT_TYPE_VARDICT);
    g_variant_builder_add(&hints, "{sv}", "desktop-entry", g_variant_new_string(applicationID));
    return ownedVariant(g_variant_new("(susss@as@a{sv}i)", "Tavik", replacesNone, applicationID,
                                      validText(notification.title).get(),
                                      validText(understandsMarkup ? escaped(body) : body).get(),
                                      g_variant_new_strv(nullptr, 0), g_variant_builder_end(&hints),
                                      serviceDecidesWhenToClose));
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

/// Sends on the bus thread.
class DesktopNotifier::Sender : public std::enable_shared_from_this<Sender> {
public:
    explicit Sender(std::shared_ptr<BusConnection> session) : session(std::move(session)) {}

    void begin() {
        ownerChanges = session->watchOwner(
            service.name, [this](const std::string&) { understandsMarkup.reset(); });
    }

    void notify(Notification notification) {
        if (understandsMarkup) return send(notification, *understandsMarkup);
        waiting.push_back(std::move(notification));
        if (waiting.size() == 1) askForCapabilities();
    }

private:
    void askForCapabilities() {
        session->call(service, "GetCapabilities", {},
                      {.answerType = "(as)", .activation = BusActivation::allowed},
                      [weak = weak_from_this()](const VariantHandle& answer) {
                          if (const auto self = weak.lock()) self->takeCapabilities(answer.get());
                      });
    }

    /// Without an answer what waits is sent once more, as plain text, and the next one asks again.
    void takeCapabilities(GVariant* answer) {
        if (answer) {
            const VariantHandle capabilities(g_variant_get_child_value(answer, 0));
            understandsMarkup = containsText(capabilities.get(), "body-markup");
        }
        for (const Notification& notification : std::exchange(waiting, {}))
            send(notification, understandsMarkup.value_or(false));
    }

    void send(const Notification& notification, bool asMarkup) {
        session->call(service, "Notify", argumentsFor(notification, asMarkup),
                      {.answerType = "(u)", .activation = BusActivation::allowed},
                      [](const VariantHandle&) {});
    }

    std::shared_ptr<BusConnection> session;
    /// Of the service that runs now; empty until it was asked.
    std::optional<bool> understandsMarkup;
    std::vector<Notification> waiting;
    BusSubscription ownerChanges;
};

DesktopNotifier::DesktopNotifier(const std::shared_ptr<BusConnection>& session)
    : session(session), sender(makeOn<Sender>(session->thread(), session)) {
    session->whenReady([weak = std::weak_ptr(sender)](bool) {
        if (const auto self = weak.lock()) self->begin();
    });
}

DesktopNotifier::~DesktopNotifier() = default;

void DesktopNotifier::notify(const std::string& title, const std::string& body) {
    session->whenReady([weak = std::weak_ptr(sender), title, body](bool) {
        if (const auto self = weak.lock()) self->notify({title, body});
    });
}

} // namespace tavik
