#pragma once

#include "Platform/Linux/DBus/BusConnection.h"

#include <functional>
#include <memory>
#include <string>

namespace tavik {

/// A call to the desktop's portal, whose outcome may wait for the user: it is told by a signal of
/// an object that the portal makes for the request, at a place that is known before the call.
///
/// For the bus thread; the connection must be ready.
class PortalRequest : public std::enable_shared_from_this<PortalRequest> {
public:
    enum class Outcome { done, declined, failed };
    using Handler = std::function<void(Outcome outcome, GVariant* results)>;

    /// `portal` is the unique name of the program that is the portal now. Each request of a
    /// connection has a token of its own, of letters, digits and "_".
    PortalRequest(std::shared_ptr<BusConnection> session, std::string portal, std::string token);

    /// Calls a method of the portal, with arguments that carry the token as "handle_token". The
    /// handler is called once, with results if it is done, but not once this is gone.
    void send(const char* interface, const char* method, VariantHandle arguments, Handler handler);

    /// Takes the request back, with what it shows to the user. The handler is not called any more.
    void withdraw();

private:
    void takeResponse(GVariant* response);
    void finish(Outcome outcome, GVariant* results);

    std::shared_ptr<BusConnection> session;
    BusObject request;
    Handler handler;
    BusSubscription responses;
};

} // namespace tavik
