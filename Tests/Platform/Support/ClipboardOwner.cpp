#include "Platform/Support/ClipboardOwner.h"

#include <utility>

namespace tavik::test {

ClipboardOwner::ClipboardOwner(std::vector<Offer> offers, Manners manners,
                               const std::string& selection)
    : server(client, std::move(manners)), farewell(client.atom("TAVIK_TEST_FAREWELL")) {
    server.onLoss = [this](const std::string&) {
        const std::lock_guard lock(mutex);
        ++lossCount;
    };
    server.onRequest = [this](const std::string& target) {
        const std::lock_guard lock(mutex);
        ++requestCounts[target];
    };
    server.take(selection, std::move(offers));
    thread = std::thread([this] { run(); });
}

ClipboardOwner::~ClipboardOwner() {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window();
    message.type = farewell;
    xcb_send_event(client.connection(), 0, window(), XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char*>(&message)); // NOLINT
    xcb_flush(client.connection());
    thread.join();
}

int ClipboardOwner::losses() const {
    const std::lock_guard lock(mutex);
    return lossCount;
}

int ClipboardOwner::requests(const std::string& target) const {
    const std::lock_guard lock(mutex);
    const auto found = requestCounts.find(target);
    return found == requestCounts.end() ? 0 : found->second;
}

void ClipboardOwner::run() {
    while (const XClient::Event event{xcb_wait_for_event(client.connection())}) {
        const auto* message = reinterpret_cast<xcb_client_message_event_t*>(event.get()); // NOLINT
        const bool isMessage = (event->response_type & 0x7f) == XCB_CLIENT_MESSAGE;
        if (isMessage && message->type == farewell) return;
        server.handle(*event);
    }
}

} // namespace tavik::test
