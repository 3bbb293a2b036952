#include "Platform/Linux/X11/SelectionServer.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

namespace tavik {
namespace {

/// What goes in one piece, and the size of a part of what does not.
constexpr std::size_t partSize = std::size_t{256} << 10U;
/// For a requestor to take a part.
constexpr std::chrono::seconds patience{10};
/// More than programs ask for at the same time.
constexpr std::size_t maxTransfers = 100;
/// Of the names in one request.
constexpr std::uint32_t maxMany = 512;

} // namespace

void SelectionServer::setContents(SelectionContentsRef offered, xcb_timestamp_t ownedSince) {
    this->offered = std::move(offered);
    this->ownedSince = ownedSince;
}

void SelectionServer::handle(const xcb_generic_event_t& event) {
    if (kindOf(event) == XCB_SELECTION_REQUEST) {
        answer(as<xcb_selection_request_event_t>(event));
    } else if (kindOf(event) == XCB_DESTROY_NOTIFY) {
        forget(as<xcb_destroy_notify_event_t>(event).window);
    } else if (kindOf(event) == XCB_PROPERTY_NOTIFY) {
        const auto& change = as<xcb_property_notify_event_t>(event);
        if (change.state != XCB_PROPERTY_DELETE) return;
        const auto found = std::ranges::find_if(transfers, [&](const Transfer& each) {
            return each.requestor == change.window && each.property == change.atom;
        });
        if (found == transfers.end() || !sendPart(*found)) return;
        transfers.erase(found);
        stopWatching(change.window);
    }
}

std::optional<SelectionServer::Clock::time_point> SelectionServer::nextMoment() const {
    const auto next = std::ranges::min_element(transfers, {}, &Transfer::limit);
    return next == transfers.end() ? std::nullopt : std::optional(next->limit);
}

void SelectionServer::giveUpStalled() {
    const auto now = Clock::now();
    std::vector<xcb_window_t> stalled;
    for (const Transfer& transfer : transfers)
        if (transfer.limit <= now) stalled.push_back(transfer.requestor);
    std::erase_if(transfers, [&](const Transfer& each) { return each.limit <= now; });
    for (const xcb_window_t requestor : stalled)
        stopWatching(requestor);
}

void SelectionServer::answer(const xcb_selection_request_event_t& request) {
    const SelectionAtoms& atoms = window.atoms();
    // Some old programs name no property and mean that of the target's name.
    const xcb_atom_t property =
        request.property == XCB_ATOM_NONE ? request.target : request.property;
    bool isPut = false;
    if (request.selection == atoms[SelectionAtoms::clipboard] && offered)
        isPut = request.target == atoms[SelectionAtoms::multiple]
                    ? request.property != XCB_ATOM_NONE && putMany(request.requestor, property)
                    : put(request.requestor, request.target, property);
    xcb_selection_notify_event_t notice{};
    notice.response_type = XCB_SELECTION_NOTIFY;
    notice.time = request.time;
    notice.requestor = request.requestor;
    notice.selection = request.selection;
    notice.target = request.target;
    notice.property = isPut ? property : xcb_atom_t{XCB_ATOM_NONE};
    // libxcb sends 32 bytes, which is the size of any event.
    static_assert(sizeof(notice) <= 32);
    std::array<char, 32> bytes{};
    std::memcpy(bytes.data(), &notice, sizeof(notice));
    xcb_send_event(window.connection(), 0, request.requestor, XCB_EVENT_MASK_NO_EVENT,
                   bytes.data());
}

/// Whether there is such a target.
bool SelectionServer::put(xcb_window_t requestor, xcb_atom_t target, xcb_atom_t property) {
    const SelectionAtoms& atoms = window.atoms();
    if (target == atoms[SelectionAtoms::targets]) {
        putTargets(requestor, property);
        return true;
    }
    if (target == atoms[SelectionAtoms::timestamp]) {
        put(requestor, property, XCB_ATOM_INTEGER, {ownedSince});
        return true;
    }
    const auto found =
        std::ranges::find(offered->targets, target, &SelectionContents::Target::name);
    return found != offered->targets.end() && found->data
           && putData(requestor, property, *found->data);
}

void SelectionServer::putTargets(xcb_window_t requestor, xcb_atom_t property) {
    const SelectionAtoms& atoms = window.atoms();
    std::vector<std::uint32_t> names{atoms[SelectionAtoms::targets],
                                     atoms[SelectionAtoms::timestamp],
                                     atoms[SelectionAtoms::multiple]};
    for (const SelectionContents::Target& target : offered->targets)
        names.push_back(target.name);
    put(requestor, property, XCB_ATOM_ATOM, names);
}

bool SelectionServer::putData(xcb_window_t requestor, xcb_atom_t property,
                              const SelectionData& data) {
    if (data.bytes.size() <= partSize) {
        xcb_change_property(window.connection(), XCB_PROP_MODE_REPLACE, requestor, property,
                            data.type, data.format, static_cast<std::uint32_t>(data.unitCount()),
                            data.bytes.data());
        return true;
    }
    if (transfers.size() >= maxTransfers) return false;
    std::erase_if(transfers, [&](const Transfer& each) {
        return each.requestor == requestor && each.property == property;
    });
    watch(requestor);
    put(requestor, property, window.atoms()[SelectionAtoms::incremental],
        {static_cast<std::uint32_t>(data.bytes.size())});
    transfers.push_back({requestor, property, offered, &data, 0, Clock::now() + patience});
    return true;
}

/// The property names pairs of a target and a property. Those that cannot be put lose theirs.
bool SelectionServer::putMany(xcb_window_t requestor, xcb_atom_t property) {
    const auto request = xcb_get_property(window.connection(), 0, requestor, property,
                                          XCB_GET_PROPERTY_TYPE_ANY, 0, maxMany);
    const XCBReply<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(window.connection(), request, nullptr));
    if (!reply || reply->format != 32 || reply->value_len % 2 != 0 || reply->bytes_after > 0)
        return false;
    const auto* first = static_cast<const xcb_atom_t*>(xcb_get_property_value(reply.get()));
    std::vector<xcb_atom_t> pairs(first, first + reply->value_len);
    for (std::size_t i = 0; i < pairs.size(); i += 2) {
        const xcb_atom_t target = pairs[i];
        const bool isSimple = target != window.atoms()[SelectionAtoms::multiple];
        if (!isSimple || !put(requestor, target, pairs[i + 1])) pairs[i + 1] = XCB_ATOM_NONE;
    }
    put(requestor, property, window.atoms()[SelectionAtoms::atomPair], pairs);
    return true;
}

void SelectionServer::put(xcb_window_t requestor, xcb_atom_t property, xcb_atom_t type,
                          const std::vector<std::uint32_t>& numbers) {
    xcb_change_property(window.connection(), XCB_PROP_MODE_REPLACE, requestor, property, type, 32,
                        static_cast<std::uint32_t>(numbers.size()), numbers.data());
}

/// Whether that was the last one, which is empty.
bool SelectionServer::sendPart(Transfer& transfer) {
    const SelectionData& data = *transfer.data;
    const std::size_t size = std::min(partSize, data.bytes.size() - transfer.sent);
    xcb_change_property(window.connection(), XCB_PROP_MODE_REPLACE, transfer.requestor,
                        transfer.property, data.type, data.format,
                        static_cast<std::uint32_t>(size / (data.format / 8U)),
                        data.bytes.data() + transfer.sent);
    transfer.sent += size;
    transfer.limit = Clock::now() + patience;
    return size == 0;
}

void SelectionServer::forget(xcb_window_t requestor) {
    std::erase_if(transfers, [&](const Transfer& each) { return each.requestor == requestor; });
}

void SelectionServer::watch(xcb_window_t requestor) {
    const std::uint32_t noticed = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(window.connection(), requestor, XCB_CW_EVENT_MASK, &noticed);
}

void SelectionServer::stopWatching(xcb_window_t requestor) {
    if (requestor == window.id()) return;
    if (std::ranges::find(transfers, requestor, &Transfer::requestor) != transfers.end()) return;
    const std::uint32_t nothing = XCB_EVENT_MASK_NO_EVENT;
    xcb_change_window_attributes(window.connection(), requestor, XCB_CW_EVENT_MASK, &nothing);
}

} // namespace tavik
