#include "Platform/Linux/DBus/PortalRequest.h"

#include <algorithm>

namespace tavik {
namespace {

constexpr const char* portalPath = "/org/freedesktop/portal/desktop";

/// A unique name as portals write it in paths: ":1.42" is "1_42".
std::string pathElement(const std::string& uniqueName) {
    std::string element = uniqueName.substr(uniqueName.starts_with(':') ? 1 : 0);
    std::ranges::replace(element, '.', '_');
    return element;
}

} // namespace

PortalRequest::PortalRequest(std::shared_ptr<BusConnection> session, std::string portal,
                             std::string token)
    : session(std::move(session)), request{std::move(portal),
                                           std::string(portalPath) + "/request/"
                                               + pathElement(this->session->uniqueName()) + "/"
                                               + std::move(token),
                                           "org.freedesktop.portal.Request"} {}

void PortalRequest::send(const char* interface, const char* method, VariantHandle arguments,
                         Handler handler) {
    this->handler = std::move(handler);
    responses =
        session->subscribe(request, "Response", "", [weak = weak_from_this()](GVariant* response) {
            if (const auto self = weak.lock()) self->takeResponse(response);
        });
    session->call({request.name, portalPath, interface}, method, std::move(arguments),
                  {.answerType = "(o)"}, [weak = weak_from_this()](const VariantHandle& answer) {
                      const auto self = weak.lock();
                      if (self && !answer) self->finish(Outcome::failed, nullptr);
                  });
}

void PortalRequest::withdraw() {
    handler = {};
    session->call(request, "Close", {}, {}, [](const VariantHandle&) {});
}

void PortalRequest::takeResponse(GVariant* response) {
    constexpr guint32 done = 0;
    constexpr guint32 declined = 1;
    if (!g_variant_is_of_type(response, G_VARIANT_TYPE("(ua{sv})")))
        return finish(Outcome::failed, nullptr);
    const VariantHandle code(g_variant_get_child_value(response, 0));
    const VariantHandle results(g_variant_get_child_value(response, 1));
    const guint32 value = g_variant_get_uint32(code.get());
    finish(value == done       ? Outcome::done
           : value == declined ? Outcome::declined
                               : Outcome::failed,
           results.get());
}

void PortalRequest::finish(Outcome outcome, GVariant* results) {
    if (const Handler present = std::exchange(handler, {})) present(outcome, results);
}

} // namespace tavik
