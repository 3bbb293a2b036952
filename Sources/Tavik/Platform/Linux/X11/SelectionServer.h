#pragma once

#include "Platform/Linux/X11/SelectionContents.h"
#include "Platform/Linux/X11/SelectionWindow.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace tavik {

/// Hands out what was saved of a selection, while we own it.
class SelectionServer {
public:
    using Clock = SelectionWindow::Clock;

    explicit SelectionServer(const SelectionWindow& window) : window(window) {}

    /// What to hand out from now on, and since when the selection is ours; null when it is not.
    void setContents(SelectionContentsRef offered, xcb_timestamp_t ownedSince);

    const SelectionContentsRef& contents() const { return offered; }

    xcb_timestamp_t ownershipTime() const { return ownedSince; }

    bool hasTransfers() const { return !transfers.empty(); }

    /// Takes what is asked of the selection, and what other programs do with the parts that they
    /// are sent.
    void handle(const xcb_generic_event_t& event);

    /// When the next transfer has to go on, or is given up.
    std::optional<Clock::time_point> nextMoment() const;
    void giveUpStalled();

private:
    /// One that goes on in parts. Its contents stay, whoever owns the selection by now.
    struct Transfer {
        xcb_window_t requestor;
        xcb_atom_t property;
        SelectionContentsRef contents;
        const SelectionData* data;
        std::size_t sent;
        Clock::time_point limit;
    };

    void answer(const xcb_selection_request_event_t& request);
    bool put(xcb_window_t requestor, xcb_atom_t target, xcb_atom_t property);
    bool putData(xcb_window_t requestor, xcb_atom_t property, const SelectionData& data);
    bool putMany(xcb_window_t requestor, xcb_atom_t property);
    void putTargets(xcb_window_t requestor, xcb_atom_t property);
    void put(xcb_window_t requestor, xcb_atom_t property, xcb_atom_t type,
             const std::vector<std::uint32_t>& numbers);
    bool sendPart(Transfer& transfer);
    void forget(xcb_window_t requestor);
    void watch(xcb_window_t requestor);
    void stopWatching(xcb_window_t requestor);

    const SelectionWindow& window;
    SelectionContentsRef offered;
    xcb_timestamp_t ownedSince = XCB_CURRENT_TIME;
    std::vector<Transfer> transfers;
};

} // namespace tavik
