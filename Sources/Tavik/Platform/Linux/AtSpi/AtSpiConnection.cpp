#include "Platform/Linux/AtSpi/AtSpiConnection.h"

#include "Platform/Linux/DBus/BusConnection.h"

#include <algorithm>
#include <string>

namespace tavik {
namespace {

using std::chrono::milliseconds;
using Deadline = AtSpiConnection::Deadline;

milliseconds until(Deadline deadline) {
    return std::max(
        std::chrono::duration_cast<milliseconds>(deadline - std::chrono::steady_clock::now()),
        milliseconds{0});
}

/// An event loop of the calling thread's own, for as long as it lives.
class LocalLoop {
public:
    LocalLoop() : context(g_main_context_new()) { g_main_context_push_thread_default(context); }

    ~LocalLoop() {
        // What is still to be told would keep its teller.
        while (g_main_context_iteration(context, FALSE) != FALSE) {
        }
        g_main_context_pop_thread_default(context);
        g_main_context_unref(context);
    }

    LocalLoop(const LocalLoop&) = delete;
    LocalLoop& operator=(const LocalLoop&) = delete;

    void runOnce() { g_main_context_iteration(context, TRUE); }

    /// Cancels after the given time, unless the handle goes first.
    SourceHandle cancelAfter(milliseconds time, GCancellable* cancellable) {
        SourceHandle timer(g_timeout_source_new(static_cast<guint>(time.count())));
        g_source_set_callback(
            timer.get(),
            [](gpointer data) -> gboolean {
                g_cancellable_cancel(static_cast<GCancellable*>(data));
                return G_SOURCE_REMOVE;
            },
            cancellable, nullptr);
        g_source_attach(timer.get(), context);
        return timer;
    }

private:
    GMainContext* context;
};

struct Attempt {
    bool isOver = false;
    ObjectHandle<GDBusConnection> connection;
};

void handleConnected(GObject*, GAsyncResult* result, gpointer data) {
    auto& attempt = *static_cast<Attempt*>(data);
    attempt.connection.reset(g_dbus_connection_new_for_address_finish(result, nullptr));
    attempt.isOver = true;
}

/// GLib's own waiting call knows no time limit.
std::shared_ptr<GDBusConnection> connected(LocalLoop& loop, const std::string& address,
                                           Deadline deadline) {
    const std::string running = runningBusAddress(address);
    if (running.empty()) return nullptr;
    const ObjectHandle<GCancellable> cancellable(g_cancellable_new());
    const SourceHandle timer = loop.cancelAfter(until(deadline), cancellable.get());
    Attempt attempt;
    constexpr auto flags =
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT
                                          | G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    g_dbus_connection_new_for_address(running.c_str(), flags, nullptr, cancellable.get(),
                                      handleConnected, &attempt);
    while (!attempt.isOver)
        loop.runOnce();
    if (!attempt.connection) return nullptr;
    g_dbus_connection_set_exit_on_close(attempt.connection.get(), FALSE);
    return std::move(attempt.connection);
}

std::string accessibilityBusAddress(LocalLoop& loop, Deadline deadline) {
    const auto session = connected(loop, sessionBusAddress(), deadline);
    const milliseconds left = until(deadline);
    if (!session || left.count() == 0) return {};
    const VariantHandle answer(g_dbus_connection_call_sync(
        session.get(), "org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress", nullptr,
        G_VARIANT_TYPE("(s)"), G_DBUS_CALL_FLAGS_NONE, static_cast<int>(left.count()), nullptr,
        nullptr));
    g_dbus_connection_close_sync(session.get(), nullptr, nullptr);
    if (!answer) return {};
    return textOf(VariantHandle(g_variant_get_child_value(answer.get(), 0)).get());
}

} // namespace

/// The right to make the connection, if it came before the deadline.
class AtSpiConnection::Turn {
public:
    Turn(AtSpiConnection& owner, Deadline deadline) : owner(owner) {
        std::unique_lock held(owner.lock);
        isOurs = owner.turnEnded.wait_until(held, deadline, [&owner] { return !owner.isTaken; });
        if (isOurs) owner.isTaken = true;
    }

    ~Turn() {
        if (!isOurs) return;
        const std::lock_guard held(owner.lock);
        owner.isTaken = false;
        owner.turnEnded.notify_one();
    }

    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

    bool hasCome() const { return isOurs; }

private:
    AtSpiConnection& owner;
    bool isOurs = false;
};

std::shared_ptr<GDBusConnection> AtSpiConnection::before(Deadline deadline) {
    const Turn turn(*this, deadline);
    if (!turn.hasCome()) return nullptr;
    if (connection && g_dbus_connection_is_closed(connection.get())) connection.reset();
    if (!connection) {
        LocalLoop loop;
        const std::string address = accessibilityBusAddress(loop, deadline);
        if (!address.empty()) connection = connected(loop, address, deadline);
    }
    return connection;
}

} // namespace tavik
