#include "Platform/Linux/DBus/LogindWakeSignal.h"

namespace tavik {
namespace {

const BusObject manager{"org.freedesktop.login1", "/org/freedesktop/login1",
                        "org.freedesktop.login1.Manager"};

bool isGoingToSleep(GVariant* values) {
    gboolean isGoing = TRUE;
    if (g_variant_is_of_type(values, G_VARIANT_TYPE("(b)"))) g_variant_get(values, "(b)", &isGoing);
    return isGoing;
}

} // namespace

/// Listens on the bus thread.
class LogindWakeSignal::Watch {
public:
    Watch(std::shared_ptr<BusConnection> system, std::function<void()> report)
        : system(std::move(system)), report(std::move(report)) {}

    void begin() {
        changes = system->subscribe(manager, "PrepareForSleep", "", [this](GVariant* values) {
            if (!isGoingToSleep(values)) report();
        });
    }

private:
    std::shared_ptr<BusConnection> system;
    std::function<void()> report;
    BusSubscription changes;
};

LogindWakeSignal::LogindWakeSignal(const std::shared_ptr<BusConnection>& system, MainQueue& queue)
    : onWake(std::make_shared<Handler>()) {
    auto report = [&queue, weak = std::weak_ptr(onWake)] {
        queue.post([weak] {
            // A copy, for the handler may set another one.
            const auto handler = weak.lock();
            if (const Handler present = handler ? *handler : Handler()) present();
        });
    };
    watch = makeOn<Watch>(system->thread(), system, std::move(report));
    system->whenReady([weak = std::weak_ptr(watch)](bool) {
        if (const auto self = weak.lock()) self->begin();
    });
}

LogindWakeSignal::~LogindWakeSignal() = default;

void LogindWakeSignal::setOnWake(std::function<void()> onWake) {
    *this->onWake = std::move(onWake);
}

} // namespace tavik
