#pragma once

#include "Platform/Linux/X11/SelectionContents.h"
#include "Platform/Linux/X11/SelectionWindow.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace tavik {

/// Asks the owner of a selection for what it offers. Every call ends at `until` at the latest.
class SelectionReader {
public:
    using Clock = SelectionWindow::Clock;

    explicit SelectionReader(const SelectionWindow& window) : window(window) {}

    /// All that it offers but what is no data; null when any of it came too late, or made no sense,
    /// or all of it is more than can be kept.
    SelectionContentsRef contents(xcb_atom_t selection, Clock::time_point until);

    /// The text of it, in UTF-8.
    std::optional<std::string> string(xcb_atom_t selection, Clock::time_point until);

    /// Takes what comes too late.
    void handle(const xcb_generic_event_t& event);

private:
    /// What an owner answers: data, that there is none, or nothing in time that makes sense.
    enum class Answer { data, refused, none };

    /// What is read, and how much of it may come.
    struct Request {
        xcb_atom_t selection = XCB_ATOM_NONE;
        xcb_atom_t target = XCB_ATOM_NONE;
        std::size_t maxBytes = 0;
        Clock::time_point until;
    };

    /// A window whose owner has not answered. Its answer is taken away for it to find an end.
    struct Abandoned {
        xcb_window_t requestor;
        int partsLeft;
    };

    void begin();
    void end(bool isComplete);
    Answer convert(const Request& request, SelectionData& data) const;
    Answer receive(const Request& request, SelectionData& data) const;
    bool receiveParts(const Request& request, SelectionData& data) const;
    bool take(SelectionData& data, std::size_t maxBytes, bool& isThere) const;
    std::optional<std::vector<xcb_atom_t>> targets(xcb_atom_t selection,
                                                   Clock::time_point until) const;
    SelectionContentsRef readContents(xcb_atom_t selection, Clock::time_point until) const;

    const SelectionWindow& window;
    /// Of one reading only.
    xcb_window_t requestor = XCB_NONE;
    std::vector<Abandoned> abandoned;
};

} // namespace tavik
