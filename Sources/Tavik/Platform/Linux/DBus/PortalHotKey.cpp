#include "Platform/Linux/DBus/PortalHotKey.h"

#include "Platform/Linux/DBus/PortalRequest.h"
#include "Platform/Linux/DBus/ShortcutTrigger.h"

#include <optional>

namespace tavik {
namespace {

constexpr const char* applicationID = "com.tavik.app";
constexpr const char* portalName = "org.freedesktop.portal.Desktop";
constexpr const char* portalPath = "/org/freedesktop/portal/desktop";
constexpr const char* shortcuts = "org.freedesktop.portal.GlobalShortcuts";

constexpr const char* shortcutID = "lookup";
constexpr const char* description = "划词查询";

using Outcome = PortalRequest::Outcome;

/// A combination that was asked for, and the how manieth it is.
struct Wish {
    std::string trigger;
    std::uint64_t generation = 0;
};

VariantHandle creationArguments(const std::string& token) {
    GVariantBuilder options;
    g_variant_builder_init(&options, G_VARIANT_TYPE_VARDICT);
    for (const char* option : {"handle_token", "session_handle_token"})
        g_variant_builder_add(&options, "{sv}", option, g_variant_new_string(token.c_str()));
    return ownedVariant(g_variant_new("(a{sv})", &options));
}

VariantHandle bindingArguments(const std::string& session, const std::string& trigger,
                               const std::string& token) {
    constexpr const char* noWindow = "";
    GVariantBuilder shortcut;
    g_variant_builder_init(&shortcut, G_VARIANT_TYPE_VARDICT);
    g_variant_builder_add(&shortcut, "{sv}", "description", g_variant_new_string(description));
    g_variant_builder_add(&shortcut, "{sv}", "preferred_trigger",
                          g_variant_new_string(trigger.c_str()));
    GVariantBuilder list;
    g_variant_builder_init(&list, G_VARIANT_TYPE("a(sa{sv})"));
    g_variant_builder_add(&list, "(sa{sv})", shortcutID, &shortcut);
    GVariantBuilder options;
    g_variant_builder_init(&options, G_VARIANT_TYPE_VARDICT);
    g_variant_builder_add(&options, "{sv}", "handle_token", g_variant_new_string(token.c_str()));
    return ownedVariant(
        g_variant_new("(oa(sa{sv})sa{sv})", session.c_str(), &list, noWindow, &options));
}

/// The session's path; empty where there is none. Portals tell it as a text.
std::string sessionIn(GVariant* results) {
    const VariantHandle path(g_variant_lookup_value(results, "session_handle", nullptr));
    const bool isText = path
                        && (g_variant_is_of_type(path.get(), G_VARIANT_TYPE_STRING)
                            || g_variant_is_of_type(path.get(), G_VARIANT_TYPE_OBJECT_PATH));
    const std::string text = isText ? textOf(path.get()) : "";
    return g_variant_is_object_path(text.c_str()) ? text : "";
}

bool containsShortcut(GVariant* results) {
    const VariantHandle bound(
        g_variant_lookup_value(results, "shortcuts", G_VARIANT_TYPE("a(sa{sv})")));
    const gsize count = bound ? g_variant_n_children(bound.get()) : 0;
    for (gsize index = 0; index < count; ++index) {
        const VariantHandle shortcut(g_variant_get_child_value(bound.get(), index));
        const VariantHandle id(g_variant_get_child_value(shortcut.get(), 0));
        if (textOf(id.get()) == shortcutID) return true;
    }
    return false;
}

/// When our shortcut was pressed or released, on the desktop's clock; no value if it was another
/// one.
std::optional<std::uint64_t> momentOf(GVariant* signal, const std::string& session) {
    if (!g_variant_is_of_type(signal, G_VARIANT_TYPE("(osta{sv})"))) return std::nullopt;
    const VariantHandle path(g_variant_get_child_value(signal, 0));
    const VariantHandle id(g_variant_get_child_value(signal, 1));
    const VariantHandle time(g_variant_get_child_value(signal, 2));
    if (textOf(path.get()) != session || textOf(id.get()) != shortcutID) return std::nullopt;
    return g_variant_get_uint64(time.get());
}

} // namespace

/// What the owner sees, on the main thread.
struct PortalHotKey::Front {
    /// News of any earlier combination is out of date.
    std::uint64_t generation = 0;
    Published<bool> isRegistered{false};
    Published<bool> isAsking{false};
    std::function<void()> onPress;

    std::uint64_t begin(bool asks) {
        ++generation;
        change(isAsking, asks);
        change(isRegistered, false);
        return generation;
    }

    void takeAnswer(bool isOurs) {
        change(isRegistered, isOurs);
        change(isAsking, false);
    }

    static void change(Published<bool>& value, bool newValue) {
        if (value.value() != newValue) value.set(newValue);
    }
};

/// Speaks to the portal on the bus thread: one session at a time, and one question after the other.
class PortalHotKey::Client : public std::enable_shared_from_this<Client> {
public:
    struct Reports {
        std::function<void(std::uint64_t generation, bool isRegistered)> registered;
        std::function<void(std::uint64_t generation)> pressed;
    };

    Client(std::shared_ptr<BusConnection> session, Reports reports)
        : session(std::move(session)), reports(std::move(reports)) {}

    void begin() {
        ownerChanges =
            session->watchOwner(portalName, [this](const std::string& owner) { follow(owner); });
    }

    void ask(Wish newWish) {
        wish = std::move(newWish);
        mayStartPortal = true;
        closeSession();
        proceed();
    }

    void withdraw() {
        wish.reset();
        closeSession();
    }

    /// There is nobody at present who would grant the wish.
    void refuse() const {
        if (wish) reports.registered(wish->generation, false);
    }

private:
    /// A portal that is replaced or ends takes our session and all questions along.
    void follow(const std::string& owner) {
        if (portal == owner) return;
        portal = owner;
        introduction.reset();
        isIntroduced = false;
        request.reset();
        forgetSession();
        listen();
        proceed();
    }

    void listen() {
        const BusObject source{*portal, portalPath, shortcuts};
        const bool isThere = !portal->empty();
        const auto follow = [&](const char* signal, void (Client::*take)(GVariant*)) {
            return isThere ? session->subscribe(
                       source, signal, "",
                       [this, take](GVariant* values) { (this->*take)(values); })
                           : BusSubscription();
        };
        presses = follow("Activated", &Client::takePress);
        releases = follow("Deactivated", &Client::takeRelease);
    }

    /// Does the next thing that the wish takes, unless the portal owes an answer.
    void proceed() {
        if (!wish || !portal || introduction || request) return;
        if (portal->empty())
            startPortal();
        else if (!isIntroduced)
            introduce();
        else if (path.empty())
            create();
        else
            bind();
    }

    /// By the bus itself: a call to the portal would be the first, before the introduction.
    void startPortal() {
        if (!std::exchange(mayStartPortal, false)) return refuse();
        session->call({"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus"},
                      "StartServiceByName", ownedVariant(g_variant_new("(su)", portalName, 0U)),
                      {.answerType = "(u)"},
                      [weak = weak_from_this()](const VariantHandle& answer) {
                          const auto self = weak.lock();
                          if (self && !answer) self->refuse();
                      });
    }

    /// Where programs outside of a sandbox can tell the portal who they are, it wants to know.
    void introduce() {
        mayStartPortal = false;
        introduction = std::make_shared<char>();
        GVariant* const noOptions = g_variant_new_array(G_VARIANT_TYPE("{sv}"), nullptr, 0);
        session->call(
            {*portal, portalPath, "org.freedesktop.host.portal.Registry"}, "Register",
            ownedVariant(g_variant_new("(s@a{sv})", applicationID, noOptions)), {},
            [weak = weak_from_this(), asked = std::weak_ptr(introduction)](const VariantHandle&) {
                const auto self = weak.lock();
                if (!self || asked.expired()) return;
                self->introduction.reset();
                self->isIntroduced = true;
                self->proceed();
            });
    }

    void create() {
        const std::string token = makeRequest();
        const std::uint64_t generation = wish->generation;
        request->send(shortcuts, "CreateSession", creationArguments(token),
                      [this, generation](Outcome outcome, GVariant* results) {
                          request.reset();
                          takeSession(outcome == Outcome::done ? sessionIn(results) : "",
                                      generation);
                      });
    }

    /// What was wished last counts, which may be nothing, or something that has yet to be tried.
    void takeSession(const std::string& made, std::uint64_t generation) {
        if (made.empty()) {
            if (wish && wish->generation != generation) return proceed();
            return refuse();
        }
        path = made;
        closings =
            session->subscribe(sessionObject(), "Closed", "", [this](GVariant*) { loseSession(); });
        if (wish)
            proceed();
        else
            closeSession();
    }

    void bind() {
        const std::string token = makeRequest();
        request->send(shortcuts, "BindShortcuts", bindingArguments(path, wish->trigger, token),
                      [this](Outcome outcome, GVariant* results) {
                          request.reset();
                          takeBinding(outcome, results);
                      });
    }

    void takeBinding(Outcome outcome, GVariant* results) {
        if (outcome == Outcome::done && containsShortcut(results)) {
            isBound = true;
            return reports.registered(wish->generation, true);
        }
        refuse();
        if (outcome == Outcome::declined) wish.reset();
        closeSession();
    }

    /// The user or the desktop took the shortcut back.
    void loseSession() {
        request.reset();
        forgetSession();
    }

    /// One that is being made is closed once it is there.
    void closeSession() {
        if (path.empty()) return;
        if (request) request->withdraw();
        request.reset();
        session->call(sessionObject(), "Close", {}, {}, [](const VariantHandle&) {});
        forgetSession();
    }

    void forgetSession() {
        path.clear();
        closings = {};
        lastPress.reset();
        if (std::exchange(isBound, false) && wish) reports.registered(wish->generation, false);
    }

    void takePress(GVariant* signal) {
        const auto moment = momentOf(signal, path);
        if (!isBound || !moment || std::exchange(lastPress, moment) == moment) return;
        reports.pressed(wish->generation);
    }

    void takeRelease(GVariant* signal) {
        if (momentOf(signal, path)) lastPress.reset();
    }

    std::string makeRequest() {
        std::string token = "tavik" + std::to_string(++requestCount);
        request = std::make_shared<PortalRequest>(session, *portal, token);
        return token;
    }

    BusObject sessionObject() const { return {*portal, path, "org.freedesktop.portal.Session"}; }

    std::shared_ptr<BusConnection> session;
    Reports reports;
    /// What shall be ours; none when the user does not want it.
    std::optional<Wish> wish;
    /// The unique name of the program that is the portal now, empty if none is; not known at first.
    std::optional<std::string> portal;
    bool mayStartPortal = false;
    bool isIntroduced = false;
    /// While the portal is told who we are.
    std::shared_ptr<void> introduction;
    /// The question that the portal has yet to answer: for a session while there is no path.
    std::shared_ptr<PortalRequest> request;
    std::uint64_t requestCount = 0;
    std::string path;
    bool isBound = false;
    /// Of the press that was told last, until it is known to be over.
    std::optional<std::uint64_t> lastPress;
    BusSubscription closings;
    BusSubscription presses;
    BusSubscription releases;
    BusSubscription ownerChanges;
};

PortalHotKey::PortalHotKey(BusThread& thread, const std::string& sessionBusAddress,
                           MainQueue& queue)
    : front(std::make_shared<Front>()), session(BusConnection::open(thread, sessionBusAddress)) {
    Client::Reports reports{
        .registered =
            [&queue, weak = std::weak_ptr(front)](std::uint64_t generation, bool isRegistered) {
                queue.post([weak, generation, isRegistered] {
                    const auto front = weak.lock();
                    if (front && front->generation == generation) front->takeAnswer(isRegistered);
                });
            },
        .pressed =
            [&queue, weak = std::weak_ptr(front)](std::uint64_t generation) {
                queue.post([weak, generation] {
                    const auto front = weak.lock();
                    if (!front || front->generation != generation) return;
                    // A copy, for the handler may set another one.
                    if (const auto handler = front->onPress) handler();
                });
            }};
    client = makeOn<Client>(thread, session, std::move(reports));
    session->whenReady([weak = std::weak_ptr(client)](bool) {
        if (const auto self = weak.lock()) self->begin();
    });
}

PortalHotKey::~PortalHotKey() = default;

bool PortalHotKey::registerHotKey(std::uint32_t keyCode, std::uint32_t modifiers) {
    const auto trigger = shortcutTrigger(keyCode, modifiers);
    if (!trigger) {
        unregisterHotKey();
        return false;
    }
    session->whenReady([weak = std::weak_ptr(client),
                        wish = Wish{*trigger, front->begin(true)}](bool isConnected) {
        const auto self = weak.lock();
        if (!self) return;
        self->ask(wish);
        if (!isConnected) self->refuse();
    });
    return false;
}

void PortalHotKey::unregisterHotKey() {
    front->begin(false);
    session->whenReady([weak = std::weak_ptr(client)](bool) {
        if (const auto self = weak.lock()) self->withdraw();
    });
}

const Published<bool>& PortalHotKey::isRegistered() const {
    return front->isRegistered;
}

const Published<bool>& PortalHotKey::isAsking() const {
    return front->isAsking;
}

void PortalHotKey::setOnPress(std::function<void()> onPress) {
    front->onPress = std::move(onPress);
}

} // namespace tavik
