#pragma once

#include "Platform/Linux/DBus/BusThread.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tavik {

/// An interface of an object that another program offers on a bus.
struct BusObject {
    std::string name;
    std::string path;
    std::string interface;
};

/// Whether a call may make the bus start the program that it is meant for.
enum class BusActivation { allowed, forbidden };

/// Where this session's bus is, as the environment tells; empty if there is none. Never starts one.
std::string sessionBusAddress();
/// Where the machine's bus is.
std::string systemBusAddress();

/// Those of the alternatives in an address behind which a bus runs already; empty if there is none.
std::string runningBusAddress(std::string_view address);

/// Keeps a handler of a connection; it is not called any more once this is gone. For the bus
/// thread.
class [[nodiscard]] BusSubscription {
public:
    BusSubscription() = default;

    explicit BusSubscription(std::function<void()> end) : end(std::move(end)) {}

    BusSubscription(const BusSubscription&) = delete;
    BusSubscription& operator=(const BusSubscription&) = delete;

    BusSubscription(BusSubscription&& other) noexcept : end(std::exchange(other.end, {})) {}

    BusSubscription& operator=(BusSubscription&& other) noexcept {
        std::swap(end, other.end);
        return *this;
    }

    ~BusSubscription() {
        if (end) end();
    }

private:
    std::function<void()> end;
};

/// A connection of our own to a message bus, made in the background.
///
/// To be had from `open`. All but that and `whenReady` is for the bus thread, and makes sense once
/// the connection is ready; every handler is called there, never within the call that it is given
/// to. Without a bus every call fails quietly and no signal ever comes. A connection that breaks
/// stays broken.
class BusConnection : public std::enable_shared_from_this<BusConnection> {
public:
    /// `isConnected` is false when there is no bus to be had.
    using ReadyHandler = std::function<void(bool isConnected)>;
    /// The reply's values, or null when there was none in time. Called once, but not any more when
    /// the connection is gone.
    using AnswerHandler = std::function<void(VariantHandle answer)>;
    using SignalHandler = std::function<void(GVariant* values)>;
    /// The unique name of the program that has the watched name, empty if none has.
    using OwnerHandler = std::function<void(const std::string& owner)>;

    /// Begins to connect and returns at once. Waits for the bus without limit. An address by which
    /// a program would be started is not followed.
    static std::shared_ptr<BusConnection> open(BusThread& thread, const std::string& address);

    /// For `open`.
    BusConnection(BusThread& thread, std::string address);
    ~BusConnection();
    BusConnection(const BusConnection&) = delete;
    BusConnection& operator=(const BusConnection&) = delete;

    BusThread& thread() const { return home; }

    /// Calls the handler once it is known whether there is a bus. Any thread may call.
    void whenReady(ReadyHandler handler);

    /// Our own name on the bus; empty without one.
    std::string uniqueName() const;

    struct CallOptions {
        /// The signature of the reply's values; any other reply counts as none.
        const char* answerType = "()";
        /// Without a limit if zero.
        std::chrono::milliseconds timeout{0};
        BusActivation activation = BusActivation::forbidden;
    };

    void call(const BusObject& object, const char* method, VariantHandle arguments,
              const CallOptions& options, AnswerHandler handler);

    /// Calls a method of org.freedesktop.DBus.Properties. Options may leave out the answer's type.
    void readProperty(const BusObject& object, const char* property, const CallOptions& options,
                      AnswerHandler handler);

    /// Calls the handler for each such signal. `firstArgument` narrows them down unless empty.
    BusSubscription subscribe(const BusObject& object, const char* signal,
                              const char* firstArgument, SignalHandler handler);

    /// Calls the handler with the present owner, later with each new one, and with an empty one
    /// when the connection breaks.
    BusSubscription watchOwner(const std::string& name, const OwnerHandler& handler);

private:
    void connect();
    void finishConnecting(ObjectHandle<GDBusConnection> made);

    BusThread& home;
    std::string address;
    ObjectHandle<GCancellable> cancellable;
    std::shared_ptr<GDBusConnection> connection;
    bool isReady = false;
    std::vector<ReadyHandler> waiting;
};

} // namespace tavik
