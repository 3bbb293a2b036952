#include "Platform/Linux/DBus/StatusNotifierHost.h"

namespace tavik {
namespace {

const BusObject watcher{"org.kde.StatusNotifierWatcher", "/StatusNotifierWatcher",
                        "org.kde.StatusNotifierWatcher"};

} // namespace

/// Follows the watcher on the bus thread.
class StatusNotifierHost::Watch : public std::enable_shared_from_this<Watch> {
public:
    using Report = std::function<void(Presence presence)>;

    Watch(std::shared_ptr<BusConnection> session, Report report)
        : session(std::move(session)), report(std::move(report)) {}

    void begin() {
        registered = session->subscribe(watcher, "StatusNotifierHostRegistered", "",
                                        [this](GVariant*) { ask(); });
        unregistered = session->subscribe(watcher, "StatusNotifierHostUnregistered", "",
                                          [this](GVariant*) { ask(); });
        ownerChanges = session->watchOwner(watcher.name, [this](const std::string& owner) {
            if (owner.empty()) return abandon();
            conclude(Presence::unknown);
            ask();
        });
    }

    void abandon() {
        question.reset();
        conclude(Presence::absent);
    }

private:
    /// A watcher may be busy for long while the desktop starts, so its answer has no time limit.
    void ask() {
        question = std::make_shared<char>();
        session->readProperty(
            watcher, "IsStatusNotifierHostRegistered", {},
            [weak = weak_from_this(), asked = std::weak_ptr(question)](const VariantHandle& value) {
                const auto self = weak.lock();
                if (self && !asked.expired()) self->take(value.get());
            });
    }

    void take(GVariant* value) {
        const bool isPresent = value && g_variant_is_of_type(value, G_VARIANT_TYPE_BOOLEAN)
                               && g_variant_get_boolean(value);
        conclude(isPresent ? Presence::present : Presence::absent);
    }

    void conclude(Presence presence) {
        if (std::exchange(last, presence) != presence) report(presence);
    }

    std::shared_ptr<BusConnection> session;
    Report report;
    Presence last = Presence::unknown;
    /// Answers to any earlier question are out of date.
    std::shared_ptr<void> question;
    BusSubscription registered;
    BusSubscription unregistered;
    BusSubscription ownerChanges;
};

StatusNotifierHost::StatusNotifierHost(const std::shared_ptr<BusConnection>& session,
                                       MainQueue& queue)
    : current(std::make_shared<Published<Presence>>(Presence::unknown)) {
    auto report = [&queue, weak = std::weak_ptr(current)](Presence presence) {
        queue.post([weak, presence] {
            if (const auto published = weak.lock()) published->set(presence);
        });
    };
    watch = makeOn<Watch>(session->thread(), session, std::move(report));
    session->whenReady([weak = std::weak_ptr(watch)](bool isConnected) {
        const auto self = weak.lock();
        if (!self) return;
        if (isConnected)
            self->begin();
        else
            self->abandon();
    });
}

StatusNotifierHost::~StatusNotifierHost() = default;

const Published<TrayHost::Presence>& StatusNotifierHost::presence() const {
    return *current;
}

} // namespace tavik
