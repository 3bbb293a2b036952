#include "Platform/Linux/X11/XEmbedTrayHost.h"

#include "Platform/Linux/X11/XCBHandles.h"

#include <QSocketNotifier>
#include <string>
#include <string_view>

namespace tavik {
namespace {

/// XCB_NONE when the connection is lost.
xcb_atom_t atomOf(xcb_connection_t* connection, std::string_view name) {
    const auto request =
        xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const XCBReply<xcb_intern_atom_reply_t> reply(
        xcb_intern_atom_reply(connection, request, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_NONE};
}

/// False when there is no such window any more.
bool followStructure(xcb_connection_t* connection, xcb_window_t window) {
    const std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    const auto request =
        xcb_change_window_attributes_checked(connection, window, XCB_CW_EVENT_MASK, &events);
    return !XCBReply<xcb_generic_error_t>(xcb_request_check(connection, request))
           && !xcb_connection_has_error(connection);
}

} // namespace

class XEmbedTrayHost::Watch {
public:
    explicit Watch(Published<Presence>& current)
        : current(current), connection(xcb_connect(nullptr, &screen)) {
        if (xcb_connection_has_error(connection.get())) return;
        selection = atomOf(connection.get(), "_NET_SYSTEM_TRAY_S" + std::to_string(screen));
        manager = atomOf(connection.get(), "MANAGER");
        followStructure(connection.get(), rootOf(connection.get(), screen));
        notifier = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(connection.get()),
                                                     QSocketNotifier::Read);
        QObject::connect(notifier.get(), &QSocketNotifier::activated, notifier.get(),
                         [this] { handleEvents(); });
        findOwner();
        handleEvents();
    }

private:
    /// Requests with a reply take in events too, after which the descriptor would stay silent: so
    /// this goes on until none is left.
    void handleEvents() {
        while (const XCBReply<xcb_generic_event_t> event{xcb_poll_for_event(connection.get())})
            if (isAboutOwner(*event)) findOwner();
        if (!xcb_connection_has_error(connection.get())) return;
        notifier->setEnabled(false);
        owner = XCB_NONE;
        publish();
    }

    bool isAboutOwner(const xcb_generic_event_t& event) const {
        const int sentMark = 0x80;
        switch (event.response_type & ~sentMark) {
        case XCB_DESTROY_NOTIFY:
            return reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window == owner;
        case XCB_CLIENT_MESSAGE: {
            const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
            return message.type == manager && message.format == 32
                   && message.data.data32[1] == selection;
        }
        default:
            return false;
        }
    }

    /// An owner that is gone before it could be followed leaves the selection without one.
    void findOwner() {
        do {
            const auto request = xcb_get_selection_owner(connection.get(), selection);
            const XCBReply<xcb_get_selection_owner_reply_t> reply(
                xcb_get_selection_owner_reply(connection.get(), request, nullptr));
            owner = reply ? reply->owner : xcb_window_t{XCB_NONE};
        } while (owner != XCB_NONE && !followStructure(connection.get(), owner)
                 && !xcb_connection_has_error(connection.get()));
        publish();
    }

    void publish() {
        const auto presence = owner == XCB_NONE ? Presence::absent : Presence::present;
        if (current.value() != presence) current.set(presence);
    }

    Published<Presence>& current;
    int screen = 0;
    XCBConnection connection;
    xcb_atom_t selection = XCB_NONE;
    xcb_atom_t manager = XCB_NONE;
    xcb_window_t owner = XCB_NONE;
    std::unique_ptr<QSocketNotifier> notifier;
};

XEmbedTrayHost::XEmbedTrayHost() : watch(std::make_unique<Watch>(current)) {}

XEmbedTrayHost::~XEmbedTrayHost() = default;

const Published<TrayHost::Presence>& XEmbedTrayHost::presence() const {
    return current;
}

} // namespace tavik
