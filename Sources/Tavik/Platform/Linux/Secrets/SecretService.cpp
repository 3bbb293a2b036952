#include "Platform/Linux/Secrets/SecretService.h"

#include <libsecret/secret.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace tavik {
namespace {

using std::chrono::milliseconds;

constexpr auto serviceName = "com.tavik.app";

/// How long a call that was cancelled may take to say so.
constexpr milliseconds grace{300};

constexpr SecretSchema schema{
    serviceName,
    SECRET_SCHEMA_NONE,
    {{"service", SECRET_SCHEMA_ATTRIBUTE_STRING}, {"account", SECRET_SCHEMA_ATTRIBUTE_STRING}},
    0,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    nullptr};

struct ObjectRelease {
    void operator()(gpointer object) const { g_object_unref(object); }
};

struct ContextRelease {
    void operator()(GMainContext* context) const { g_main_context_unref(context); }
};

struct SourceRelease {
    void operator()(GSource* source) const {
        g_source_destroy(source);
        g_source_unref(source);
    }
};

struct TableRelease {
    void operator()(GHashTable* table) const { g_hash_table_unref(table); }
};

struct ValueRelease {
    void operator()(SecretValue* value) const { secret_value_unref(value); }
};

template<typename T>
using ObjectHandle = std::unique_ptr<T, ObjectRelease>;
using ContextHandle = std::unique_ptr<GMainContext, ContextRelease>;
using SourceHandle = std::unique_ptr<GSource, SourceRelease>;
using Attributes = std::unique_ptr<GHashTable, TableRelease>;
using ValueHandle = std::unique_ptr<SecretValue, ValueRelease>;
using Items = std::vector<ObjectHandle<SecretItem>>;

/// Receives the error of a call that finishes.
class ErrorSlot {
public:
    ErrorSlot() = default;

    ~ErrorSlot() { g_clear_error(&error); }

    ErrorSlot(const ErrorSlot&) = delete;
    ErrorSlot& operator=(const ErrorSlot&) = delete;

    GError** place() { return &error; }

    bool isSet() const { return error != nullptr; }

private:
    GError* error = nullptr;
};

/// Turns the asynchronous calls of the library into ones that wait, within one limit for all.
///
/// Those of its calls that wait by themselves are no choice here: some of their steps cannot be
/// cancelled, and one that awaits the end of a prompt waits for the service even then.
class Session {
public:
    Session(milliseconds limit, std::stop_token stop)
        : stop(std::move(stop)), timer(timerAfter(limit, isLate)) {
        g_main_context_push_thread_default(context.get());
    }

    ~Session() {
        while (g_main_context_iteration(context.get(), FALSE)) {
        }
        g_main_context_pop_thread_default(context.get());
    }

    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// What `begin` is given: to be passed on to the call that it begins.
    struct Call {
        GCancellable* cancellable = nullptr;
        GAsyncReadyCallback onReady = nullptr;
        gpointer data = nullptr;
    };

    /// Null if the call did not even say that it was cancelled.
    ObjectHandle<GAsyncResult> await(const std::function<void(const Call&)>& begin) {
        const auto slot = std::make_shared<Slot>();
        // Shared, for a call that is given up may still come back while another is awaited.
        begin({cancellable.get(), &onReady, std::make_unique<SharedSlot>(slot).release()});
        while (!slot->result && !isOver())
            g_main_context_iteration(context.get(), TRUE);
        if (!slot->result) cancel(*slot);
        return std::move(slot->result);
    }

private:
    struct Slot {
        ObjectHandle<GAsyncResult> result;
    };

    using SharedSlot = std::shared_ptr<Slot>;

    static void onReady(GObject*, GAsyncResult* result, gpointer data) {
        const std::unique_ptr<SharedSlot> slot(static_cast<SharedSlot*>(data));
        (*slot)->result.reset(g_object_ref(result));
    }

    SourceHandle timerAfter(milliseconds delay, bool& flag) {
        SourceHandle source(g_timeout_source_new(static_cast<guint>(delay.count())));
        const auto raise = [](gpointer data) -> gboolean {
            *static_cast<bool*>(data) = true;
            return G_SOURCE_REMOVE;
        };
        g_source_set_callback(source.get(), raise, &flag, nullptr);
        g_source_attach(source.get(), context.get());
        return source;
    }

    bool isOver() const { return isLate || stop.stop_requested(); }

    void cancel(const Slot& slot) {
        bool isGraceOver = false;
        const SourceHandle graceTimer = timerAfter(grace, isGraceOver);
        g_cancellable_cancel(cancellable.get());
        while (!slot.result && !isGraceOver)
            g_main_context_iteration(context.get(), TRUE);
    }

    ContextHandle context{g_main_context_new()};
    ObjectHandle<GCancellable> cancellable{g_cancellable_new()};
    bool isLate = false;
    std::stop_token stop;
    SourceHandle timer;
    std::stop_callback<std::function<void()>> waker{
        stop, [this] { g_main_context_wakeup(context.get()); }};
};

/// Whether GLib would find a bus without starting one: it runs dbus-launch when it has a display
/// and no address.
bool isSessionBusThere() {
    const char* address = std::getenv("DBUS_SESSION_BUS_ADDRESS");
    if (address != nullptr && *address != '\0')
        return std::string_view(address).find("autolaunch:") == std::string_view::npos;

    struct stat status {};

    const std::string path = std::string(g_get_user_runtime_dir()) + "/bus";
    return stat(path.c_str(), &status) == 0 && S_ISSOCK(status.st_mode)
           && status.st_uid == geteuid();
}

ObjectHandle<GDBusConnection> sessionBus(Session& session) {
    if (!isSessionBusThere()) return nullptr;
    // Not to be cancelled: the connection is the whole program's, and whoever asks for it next
    // would be told that it was cancelled.
    const auto result = session.await([](const Session::Call& call) {
        g_bus_get(G_BUS_TYPE_SESSION, nullptr, call.onReady, call.data);
    });
    ErrorSlot error;
    ObjectHandle<GDBusConnection> bus(result ? g_bus_get_finish(result.get(), error.place())
                                             : nullptr);
    // It would end the program along with the bus.
    if (bus) g_dbus_connection_set_exit_on_close(bus.get(), FALSE);
    return bus;
}

/// The service and the bus that it is reached by, for one session. Empty if there is none.
struct Service {
    explicit Service(Session& session) : bus(sessionBus(session)) {
        if (!bus) return;
        const auto result = session.await([](const Session::Call& call) {
            secret_service_open(SECRET_TYPE_SERVICE, nullptr, SECRET_SERVICE_NONE, call.cancellable,
                                call.onReady, call.data);
        });
        ErrorSlot error;
        if (result) proxy.reset(secret_service_open_finish(result.get(), error.place()));
    }

    ObjectHandle<GDBusConnection> bus;
    ObjectHandle<SecretService> proxy;
};

Attributes attributesOf(const std::string& account) {
    return Attributes(secret_attributes_build(&schema, "service", serviceName, "account",
                                              account.c_str(), nullptr));
}

/// All items of an account, locked ones too; nothing if the service did not answer.
std::optional<Items> findItems(Session& session, const Service& service,
                               const std::string& account) {
    const Attributes attributes = attributesOf(account);
    const auto result = session.await([&](const Session::Call& call) {
        secret_service_search(service.proxy.get(), &schema, attributes.get(), SECRET_SEARCH_ALL,
                              call.cancellable, call.onReady, call.data);
    });
    if (!result) return std::nullopt;
    ErrorSlot error;
    GList* list = secret_service_search_finish(service.proxy.get(), result.get(), error.place());
    Items items;
    for (GList* link = list; link != nullptr; link = link->next)
        items.emplace_back(static_cast<SecretItem*>(link->data));
    g_list_free(list);
    if (error.isSet()) return std::nullopt;
    return items;
}

bool isLocked(const ObjectHandle<SecretItem>& item) {
    return secret_item_get_locked(item.get()) != FALSE;
}

/// Whether the place that new secrets go to is locked. One that does not exist yet is not.
KeychainState stateOfDefaultCollection(Session& session, const Service& service) {
    const auto result = session.await([&](const Session::Call& call) {
        secret_collection_for_alias(service.proxy.get(), SECRET_COLLECTION_DEFAULT,
                                    SECRET_COLLECTION_NONE, call.cancellable, call.onReady,
                                    call.data);
    });
    if (!result) return KeychainState::unavailable;
    ErrorSlot error;
    const ObjectHandle<SecretCollection> collection(
        secret_collection_for_alias_finish(result.get(), error.place()));
    if (error.isSet()) return KeychainState::unavailable;
    const bool isLocked = collection && secret_collection_get_locked(collection.get());
    return isLocked ? KeychainState::locked : KeychainState::open;
}

std::optional<std::string> textOf(SecretValue& value) {
    gsize length = 0;
    const gchar* bytes = secret_value_get(&value, &length);
    if (!g_utf8_validate(bytes, static_cast<gssize>(length), nullptr)) return std::nullopt;
    return std::string(bytes, length);
}

Keychain::Answer load(Session& session, SecretItem& item) {
    const auto result = session.await([&](const Session::Call& call) {
        secret_item_load_secret(&item, call.cancellable, call.onReady, call.data);
    });
    ErrorSlot error;
    if (!result || !secret_item_load_secret_finish(&item, result.get(), error.place())) return {};
    const ValueHandle value(secret_item_get_secret(&item));
    return {value ? textOf(*value) : std::nullopt, KeychainState::open};
}

/// Returns whether all of them are unlocked now. The user may be asked.
bool unlock(Session& session, const Service& service, const Items& items) {
    GList* list = nullptr;
    for (const auto& item : items)
        if (isLocked(item)) list = g_list_prepend(list, item.get());
    if (list == nullptr) return true;
    const auto result = session.await([&](const Session::Call& call) {
        secret_service_unlock(service.proxy.get(), list, call.cancellable, call.onReady, call.data);
    });
    const auto count = static_cast<int>(g_list_length(list));
    g_list_free(list);
    ErrorSlot error;
    return result
           && secret_service_unlock_finish(service.proxy.get(), result.get(), nullptr,
                                           error.place())
                  == count;
}

bool remove(Session& session, SecretItem& item) {
    const auto result = session.await([&](const Session::Call& call) {
        secret_item_delete(&item, call.cancellable, call.onReady, call.data);
    });
    ErrorSlot error;
    return result && secret_item_delete_finish(&item, result.get(), error.place());
}

bool removeAll(Session& session, const Items& items) {
    bool isDone = true;
    for (const auto& item : items)
        isDone = remove(session, *item) && isDone;
    return isDone;
}

bool store(Session& session, const Service& service, const std::string& secret,
           const std::string& account) {
    const Attributes attributes = attributesOf(account);
    const ValueHandle value(
        secret_value_new(secret.data(), static_cast<gssize>(secret.size()), "text/plain"));
    const auto result = session.await([&](const Session::Call& call) {
        secret_service_store(service.proxy.get(), &schema, attributes.get(),
                             SECRET_COLLECTION_DEFAULT, "Tavik", value.get(), call.cancellable,
                             call.onReady, call.data);
    });
    ErrorSlot error;
    return result && secret_service_store_finish(service.proxy.get(), result.get(), error.place());
}

} // namespace

Keychain::Answer readSecret(const std::string& account, milliseconds limit,
                            const std::stop_token& stop) {
    Session session(limit, stop);
    const Service service(session);
    if (!service.proxy) return {};
    std::optional<Items> items = findItems(session, service, account);
    if (!items) return {};
    const bool hasLocked = std::erase_if(*items, isLocked) > 0;
    // Other programs may have left several; the one that was kept last is meant.
    const auto newest = std::ranges::max_element(
        *items, {}, [](const auto& item) { return secret_item_get_modified(item.get()); });
    if (newest != items->end()) return load(session, **newest);
    if (hasLocked) return {std::nullopt, KeychainState::locked};
    return {std::nullopt, stateOfDefaultCollection(session, service)};
}

bool writeSecret(const std::string& secret, const std::string& account, milliseconds limit,
                 const std::stop_token& stop) {
    Session session(limit, stop);
    const Service service(session);
    if (!service.proxy) return false;
    std::optional<Items> items = findItems(session, service, account);
    if (secret.empty())
        return items && unlock(session, service, *items) && removeAll(session, *items);
    if (items) {
        // Unlocking is left to the storing, so that the user is asked once; it replaces the secret.
        std::erase_if(*items, isLocked);
        removeAll(session, *items);
    }
    return store(session, service, secret, account);
}

} // namespace tavik
