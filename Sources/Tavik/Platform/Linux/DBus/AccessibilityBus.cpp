#include "Platform/Linux/DBus/AccessibilityBus.h"

#include <optional>

namespace tavik {
namespace {

using State = AccessibilityTrust::State;

constexpr std::chrono::seconds patience{1};

const BusObject launcher{"org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus"};
const BusObject status{"org.a11y.Bus", "/org/a11y/bus", "org.a11y.Status"};
const BusObject statusProperties{"org.a11y.Bus", "/org/a11y/bus",
                                 "org.freedesktop.DBus.Properties"};

/// The first call starts the accessibility bus where it is installed. Answers have no time limit:
/// one that comes after our patience has ended is still right.
constexpr BusConnection::CallOptions asking(const char* answerType) {
    return {.answerType = answerType, .activation = BusActivation::allowed};
}

std::optional<bool> boolean(GVariant* value) {
    if (!value || !g_variant_is_of_type(value, G_VARIANT_TYPE_BOOLEAN)) return std::nullopt;
    return g_variant_get_boolean(value) == TRUE;
}

} // namespace

/// Asks on the bus thread.
class AccessibilityBus::Inquiry : public std::enable_shared_from_this<Inquiry> {
public:
    using Report = std::function<void(State)>;

    Inquiry(std::shared_ptr<BusConnection> session, Report report)
        : session(std::move(session)), report(std::move(report)) {}

    void begin() {
        awaitConclusion();
        session->whenReady([weak = weak_from_this()](bool isConnected) {
            if (const auto self = weak.lock()) self->follow(isConnected);
        });
    }

    void enable() {
        session->whenReady([weak = weak_from_this()](bool) {
            if (const auto self = weak.lock()) self->switchOn();
        });
    }

    /// `done` may be called on the bus thread, or not at all.
    void restore(std::function<void()> done) {
        session->whenReady([weak = weak_from_this(), done = std::move(done)](bool) {
            if (const auto self = weak.lock()) self->switchBack(done);
        });
    }

private:
    /// What is known of the present state of things.
    struct Evidence {
        std::optional<bool> isReachable;
        std::optional<bool> isEnabled;
        std::shared_ptr<BusConnection> probe;
    };

    void follow(bool isConnected) {
        if (!isConnected) return conclude(State::notTrusted);
        switchChanges = session->subscribe(statusProperties, "PropertiesChanged",
                                           status.interface.c_str(), [this](GVariant*) { ask(); });
        ownerChanges = session->watchOwner(launcher.name, [this](const std::string& owner) {
            // Asking starts the bus, which is wanted once and not each time that it ends.
            if (owner.empty() && hasAsked)
                abandon();
            else
                ask();
        });
    }

    /// Whether it was on before must be known, to leave it so in the end.
    void switchOn() {
        isSwitching = true;
        session->readProperty(status, "IsEnabled", asking("(v)"),
                              [weak = weak_from_this()](const VariantHandle& value) {
                                  const auto self = weak.lock();
                                  if (self) self->switchOnAfter(boolean(value.get()));
                              });
    }

    void switchOnAfter(std::optional<bool> before) {
        if (before == true) return finishSwitching(isSwitchedOnByUs);
        set(true, [weak = weak_from_this(), before](bool isSet) {
            if (const auto self = weak.lock()) self->finishSwitching(isSet && before == false);
        });
    }

    void finishSwitching(bool isOurDoing) {
        isSwitching = false;
        isSwitchedOnByUs = isOurDoing;
        ask();
        if (const auto done = std::exchange(awaitingSwitch, {})) switchBack(done);
    }

    void switchBack(const std::function<void()>& done) {
        if (isSwitching) {
            awaitingSwitch = done;
            return;
        }
        if (!std::exchange(isSwitchedOnByUs, false)) return done();
        set(false, [done](bool) { done(); });
    }

    void set(bool isOn, std::function<void(bool isSet)> done) {
        session->call(statusProperties, "Set",
                      ownedVariant(g_variant_new("(ssv)", status.interface.c_str(), "IsEnabled",
                                                 g_variant_new_boolean(isOn ? TRUE : FALSE))),
                      asking("()"), [done = std::move(done)](const VariantHandle& answer) {
                          done(answer != nullptr);
                      });
    }

    void abandon() {
        evidence.reset();
        conclude(State::notTrusted);
    }

    /// Begins anew; answers to earlier questions are not regarded any more.
    void ask() {
        hasAsked = true;
        if (!deadline) awaitConclusion();
        evidence = std::make_shared<Evidence>();
        session->call(launcher, "GetAddress", {}, asking("(s)"),
                      [weak = weak_from_this(),
                       asked = std::weak_ptr(evidence)](const VariantHandle& answer) {
                          const auto self = weak.lock();
                          if (self && !asked.expired()) self->tryAddress(answer.get());
                      });
        session->readProperty(
            status, "IsEnabled", asking("(v)"),
            [weak = weak_from_this(), asked = std::weak_ptr(evidence)](const VariantHandle& value) {
                const auto self = weak.lock();
                if (self && !asked.expired()) self->takeSwitch(value.get());
            });
    }

    void takeSwitch(GVariant* value) {
        evidence->isEnabled = boolean(value).value_or(false);
        // Whoever switched it off meanwhile may switch it on again for himself.
        if (!*evidence->isEnabled) isSwitchedOnByUs = false;
        judge();
    }

    void tryAddress(GVariant* answer) {
        const VariantHandle address(answer ? g_variant_get_child_value(answer, 0) : nullptr);
        if (!address) return takeProbe(false);
        evidence->probe = BusConnection::open(session->thread(), textOf(address.get()));
        evidence->probe->whenReady(
            [weak = weak_from_this(), asked = std::weak_ptr(evidence)](bool isConnected) {
                const auto self = weak.lock();
                if (self && !asked.expired()) self->takeProbe(isConnected);
            });
    }

    void takeProbe(bool isConnected) {
        evidence->isReachable = isConnected;
        evidence->probe.reset();
        judge();
    }

    /// One "no" is enough; a "yes" takes both.
    void judge() {
        const auto [reachable, enabled] = std::pair(evidence->isReachable, evidence->isEnabled);
        if (reachable == false || enabled == false)
            conclude(State::notTrusted);
        else if (reachable && enabled)
            conclude(State::trusted);
    }

    void awaitConclusion() {
        deadline = session->thread().runAfter(patience, [this] { conclude(State::notTrusted); });
    }

    void conclude(State state) {
        deadline.reset();
        if (std::exchange(last, state) != state) report(state);
    }

    std::shared_ptr<BusConnection> session;
    Report report;
    State last = State::unknown;
    bool hasAsked = false;
    bool isSwitching = false;
    bool isSwitchedOnByUs = false;
    /// Who wants the switch back as soon as it has been switched.
    std::function<void()> awaitingSwitch;
    std::shared_ptr<Evidence> evidence;
    SourceHandle deadline;
    BusSubscription switchChanges;
    BusSubscription ownerChanges;
};

AccessibilityBus::AccessibilityBus(const std::shared_ptr<BusConnection>& session, MainQueue& queue)
    : queue(queue), current(std::make_shared<Published<State>>(State::unknown)) {
    auto report = [&queue, weak = std::weak_ptr(current)](State state) {
        queue.post([weak, state] {
            if (const auto published = weak.lock()) published->set(state);
        });
    };
    inquiry = makeOn<Inquiry>(session->thread(), session, std::move(report));
    session->thread().run([weak = std::weak_ptr(inquiry)] {
        if (const auto self = weak.lock()) self->begin();
    });
}

AccessibilityBus::~AccessibilityBus() = default;

const Published<State>& AccessibilityBus::state() const {
    return *current;
}

void AccessibilityBus::enable() {
    inquiry->enable();
}

void AccessibilityBus::restore(std::function<void()> done) {
    inquiry->restore([&queue = queue, done = std::move(done)] { queue.post(done); });
}

} // namespace tavik
