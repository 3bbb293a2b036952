#include "Platform/Support/SelectionServer.h"

#include <algorithm>
#include <thread>

namespace tavik::test {
namespace {

/// Above which a content goes in parts, and how large these are.
constexpr std::size_t longestWhole = 200'000;
constexpr std::size_t partSize = 200'000;
/// Marks an event as sent by a program.
constexpr std::uint8_t kindMask = 0x7f;

} // namespace

std::vector<Offer> textOffers(const std::string& text) {
    return {{"UTF8_STRING", "UTF8_STRING", 8, text}, {"STRING", "STRING", 8, text}};
}

SelectionServer::SelectionServer(XClient& client, Manners manners)
    : client(client), manners(std::move(manners)) {}

void SelectionServer::take(const std::string& selection, std::vector<Offer> offers) {
    const xcb_atom_t atom = client.atom(selection);
    selections[atom] = std::move(offers);
    xcb_set_selection_owner(client.connection(), client.window(), atom, XCB_CURRENT_TIME);
    client.sync();
}

void SelectionServer::giveUp(const std::string& selection) {
    xcb_set_selection_owner(client.connection(), XCB_NONE, client.atom(selection),
                            XCB_CURRENT_TIME);
    client.sync();
}

void SelectionServer::handle(const xcb_generic_event_t& event) {
    switch (event.response_type & kindMask) {
    case XCB_SELECTION_REQUEST:
        answer(reinterpret_cast<const xcb_selection_request_event_t&>(event)); // NOLINT
        break;
    case XCB_SELECTION_CLEAR:
        onLoss(client.nameOf(
            reinterpret_cast<const xcb_selection_clear_event_t&>(event).selection)); // NOLINT
        break;
    case XCB_PROPERTY_NOTIFY:
        goOn(reinterpret_cast<const xcb_property_notify_event_t&>(event)); // NOLINT
        break;
    default:
        break;
    }
    xcb_flush(client.connection());
}

void SelectionServer::answer(const xcb_selection_request_event_t& request) {
    const std::string target = client.nameOf(request.target);
    onRequest(target);
    if (manners.ignored.contains(target)) return;
    std::this_thread::sleep_for(manners.delay);
    const xcb_atom_t property = request.property == XCB_NONE ? request.target : request.property;
    xcb_selection_notify_event_t notice{};
    notice.response_type = XCB_SELECTION_NOTIFY;
    notice.time = request.time;
    notice.requestor = request.requestor;
    notice.selection = request.selection;
    notice.target = request.target;
    notice.property = put(request, property) ? property : xcb_atom_t{XCB_NONE};
    xcb_send_event(client.connection(), 0, request.requestor, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char*>(&notice)); // NOLINT
}

bool SelectionServer::put(const xcb_selection_request_event_t& request, xcb_atom_t property) {
    const std::string target = client.nameOf(request.target);
    if (manners.refused.contains(target)) return false;
    if (target == "TARGETS") {
        putTargets(request, property);
        return true;
    }
    const auto& offers = selections[request.selection];
    const auto found = std::ranges::find(offers, target, &Offer::target);
    if (found == offers.end()) return false;
    begin({request.requestor, property}, *found);
    return true;
}

void SelectionServer::putTargets(const xcb_selection_request_event_t& request,
                                 xcb_atom_t property) {
    if (manners.isLying) {
        change({request.requestor, property}, {"TARGETS", "STRING", 8, {}}, "UTF8_STRING");
        return;
    }
    std::vector<xcb_atom_t> targets{client.atom("TARGETS")};
    for (const Offer& offer : selections[request.selection])
        targets.push_back(client.atom(offer.target));
    xcb_change_property(client.connection(), XCB_PROP_MODE_REPLACE, request.requestor, property,
                        XCB_ATOM_ATOM, 32, static_cast<std::uint32_t>(targets.size()),
                        targets.data());
}

void SelectionServer::begin(const Place& place, const Offer& offer) {
    if (offer.bytes.size() <= longestWhole) {
        change(place, offer, offer.bytes);
        return;
    }
    const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(client.connection(), place.first, XCB_CW_EVENT_MASK, &events);
    const auto size = static_cast<std::uint32_t>(offer.bytes.size());
    xcb_change_property(client.connection(), XCB_PROP_MODE_REPLACE, place.first, place.second,
                        client.atom("INCR"), 32, 1, &size);
    transfers[place] = {offer, 0};
}

void SelectionServer::goOn(const xcb_property_notify_event_t& event) {
    const Place place{event.window, event.atom};
    const auto found = transfers.find(place);
    if (event.state != XCB_PROPERTY_DELETE || found == transfers.end()) return;
    Transfer& transfer = found->second;
    if (manners.isStalling && transfer.place > 0) return;
    if (manners.isEndless) transfer.place = 0;
    const std::string_view part =
        std::string_view(transfer.offer.bytes).substr(transfer.place, partSize);
    change(place, transfer.offer, part);
    transfer.place += part.size();
    if (part.empty()) transfers.erase(found);
}

void SelectionServer::change(const Place& place, const Offer& offer, std::string_view bytes) {
    const std::size_t count = bytes.size() / (offer.format / 8U);
    xcb_change_property(client.connection(), XCB_PROP_MODE_REPLACE, place.first, place.second,
                        client.atom(offer.type), offer.format, static_cast<std::uint32_t>(count),
                        bytes.data());
}

} // namespace tavik::test
