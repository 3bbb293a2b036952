#include "Platform/Linux/DBus/BusConnection.h"

#include <cstdlib>
#include <filesystem>
#include <string_view>

namespace tavik {
namespace {

constexpr const char* busName = "org.freedesktop.DBus";

std::string environment(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

/// What GLib is given along with a callback: ours, and the promise that it will be called.
template<typename Handler>
struct Callback {
    Handler handler;
    std::shared_ptr<void> obligation;

    static Callback& of(gpointer data) { return *static_cast<Callback*>(data); }

    static std::unique_ptr<Callback> owned(gpointer data) {
        return std::unique_ptr<Callback>(static_cast<Callback*>(data));
    }

    static void release(gpointer data) { owned(data); }
};

template<typename Handler>
gpointer callbackData(BusThread& thread, Handler handler) {
    auto callback = std::make_unique<Callback<Handler>>(
        Callback<Handler>{std::move(handler), thread.obligation()});
    return callback.release();
}

using ConnectedHandler = std::function<void(ObjectHandle<GDBusConnection>)>;

void handleConnected(GObject*, GAsyncResult* result, gpointer data) {
    const auto callback = Callback<ConnectedHandler>::owned(data);
    callback->handler(
        ObjectHandle<GDBusConnection>(g_dbus_connection_new_for_address_finish(result, nullptr)));
}

void handleAnswer(GObject* source, GAsyncResult* result, gpointer data) {
    const auto callback = Callback<BusConnection::AnswerHandler>::owned(data);
    GError* failure = nullptr;
    VariantHandle answer(g_dbus_connection_call_finish(reinterpret_cast<GDBusConnection*>(source),
                                                       result, &failure));
    const ErrorHandle error(failure);
    if (!g_error_matches(failure, G_IO_ERROR, G_IO_ERROR_CANCELLED))
        callback->handler(std::move(answer));
}

// The parameters are GDBus's.
void handleSignal(GDBusConnection*, const char*, const char*, const char*, const char*,
                  GVariant* values, gpointer data) {
    Callback<BusConnection::SignalHandler>::of(data).handler(values);
}

void handleClosed(GDBusConnection*, gboolean, GError*, gpointer data) {
    Callback<BusConnection::OwnerHandler>::of(data).handler({});
}

void releaseClosure(gpointer data, GClosure*) {
    Callback<BusConnection::OwnerHandler>::release(data);
}

} // namespace

std::string sessionBusAddress() {
    if (std::string address = environment("DBUS_SESSION_BUS_ADDRESS"); !address.empty())
        return address;
    const std::string directory = environment("XDG_RUNTIME_DIR");
    std::error_code error;
    const std::string socket = directory + "/bus";
    if (directory.empty() || !std::filesystem::is_socket(socket, error)) return {};
    return "unix:path="
           + std::string(TextHandle(g_dbus_address_escape_value(socket.c_str())).get());
}

std::string systemBusAddress() {
    std::string address = environment("DBUS_SYSTEM_BUS_ADDRESS");
    return address.empty() ? "unix:path=/var/run/dbus/system_bus_socket" : address;
}

std::string runningBusAddress(std::string_view address) {
    std::string kept;
    while (!address.empty()) {
        const std::size_t end = std::min(address.find(';'), address.size());
        const std::string_view one = address.substr(0, end);
        if (one.starts_with("unix:") || one.starts_with("tcp:"))
            kept.append(kept.empty() ? "" : ";").append(one);
        address.remove_prefix(std::min(end + 1, address.size()));
    }
    return kept;
}

std::shared_ptr<BusConnection> BusConnection::open(BusThread& thread, const std::string& address) {
    auto made = makeOn<BusConnection>(thread, thread, runningBusAddress(address));
    thread.run([weak = std::weak_ptr(made)] {
        if (const auto connection = weak.lock()) connection->connect();
    });
    return made;
}

BusConnection::BusConnection(BusThread& thread, std::string address)
    : home(thread), address(std::move(address)), cancellable(g_cancellable_new()) {}

BusConnection::~BusConnection() {
    g_cancellable_cancel(cancellable.get());
}

void BusConnection::connect() {
    if (address.empty()) return finishConnecting({});
    ConnectedHandler finish = [weak = weak_from_this()](ObjectHandle<GDBusConnection> made) {
        if (const auto self = weak.lock()) self->finishConnecting(std::move(made));
    };
    constexpr auto flags =
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT
                                          | G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    g_dbus_connection_new_for_address(address.c_str(), flags, nullptr, cancellable.get(),
                                      handleConnected, callbackData(home, std::move(finish)));
}

void BusConnection::finishConnecting(ObjectHandle<GDBusConnection> made) {
    connection = std::move(made);
    if (connection) g_dbus_connection_set_exit_on_close(connection.get(), FALSE);
    isReady = true;
    for (const ReadyHandler& handler : std::exchange(waiting, {}))
        handler(connection != nullptr);
}

void BusConnection::whenReady(ReadyHandler handler) {
    home.run([weak = weak_from_this(), handler = std::move(handler)] {
        const auto self = weak.lock();
        if (!self) return;
        if (self->isReady)
            handler(self->connection != nullptr);
        else
            self->waiting.push_back(handler);
    });
}

std::string BusConnection::uniqueName() const {
    const char* name = connection ? g_dbus_connection_get_unique_name(connection.get()) : nullptr;
    return name ? name : "";
}

void BusConnection::call(const BusObject& object, const char* method, VariantHandle arguments,
                         const CallOptions& options, AnswerHandler handler) {
    if (!connection) {
        home.run([weak = weak_from_this(), handler = std::move(handler)] {
            if (!weak.expired()) handler({});
        });
        return;
    }
    const auto limit = options.timeout.count();
    g_dbus_connection_call(
        connection.get(), object.name.c_str(), object.path.c_str(), object.interface.c_str(),
        method, arguments.get(), G_VARIANT_TYPE(options.answerType),
        options.activation == BusActivation::allowed ? G_DBUS_CALL_FLAGS_NONE
                                                     : G_DBUS_CALL_FLAGS_NO_AUTO_START,
        limit == 0 ? G_MAXINT : static_cast<int>(limit), cancellable.get(), handleAnswer,
        callbackData(home, std::move(handler)));
}

void BusConnection::readProperty(const BusObject& object, const char* property,
                                 const CallOptions& options, AnswerHandler handler) {
    CallOptions own = options;
    own.answerType = "(v)";
    call({object.name, object.path, "org.freedesktop.DBus.Properties"}, "Get",
         ownedVariant(g_variant_new("(ss)", object.interface.c_str(), property)), own,
         [handler = std::move(handler)](const VariantHandle& answer) {
             GVariant* value = nullptr;
             if (answer) g_variant_get(answer.get(), "(v)", &value);
             handler(VariantHandle(value));
         });
}

BusSubscription BusConnection::subscribe(const BusObject& object, const char* signal,
                                         const char* firstArgument, SignalHandler handler) {
    if (!connection) return {};
    const guint id = g_dbus_connection_signal_subscribe(
        connection.get(), object.name.c_str(), object.interface.c_str(), signal,
        object.path.c_str(), *firstArgument ? firstArgument : nullptr, G_DBUS_SIGNAL_FLAGS_NONE,
        handleSignal, callbackData(home, std::move(handler)), Callback<SignalHandler>::release);
    return BusSubscription([connection = connection, id] {
        g_dbus_connection_signal_unsubscribe(connection.get(), id);
    });
}

BusSubscription BusConnection::watchOwner(const std::string& name, const OwnerHandler& handler) {
    if (!connection) return {};
    const BusObject bus{busName, "/org/freedesktop/DBus", busName};
    auto changes = std::make_shared<BusSubscription>(
        subscribe(bus, "NameOwnerChanged", name.c_str(), [handler](GVariant* values) {
            if (!g_variant_is_of_type(values, G_VARIANT_TYPE("(sss)"))) return;
            const VariantHandle owner(g_variant_get_child_value(values, 2));
            handler(textOf(owner.get()));
        }));
    const gulong closed = g_signal_connect_data(
        connection.get(), "closed", reinterpret_cast<GCallback>(handleClosed),
        callbackData(home, handler), releaseClosure, static_cast<GConnectFlags>(0));
    call(bus, "GetNameOwner", ownedVariant(g_variant_new("(s)", name.c_str())),
         {.answerType = "(s)"},
         [handler, alive = std::weak_ptr(changes)](const VariantHandle& answer) {
             if (alive.expired()) return;
             const VariantHandle owner(answer ? g_variant_get_child_value(answer.get(), 0)
                                              : nullptr);
             handler(owner ? textOf(owner.get()) : std::string());
         });
    return BusSubscription([connection = connection, changes, closed] {
        g_signal_handler_disconnect(connection.get(), closed);
    });
}

} // namespace tavik
