#pragma once

#include "Platform/Support/XClient.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tavik::test {

/// One form of what lies on a clipboard. `bytes` as they lie in memory, whatever the format.
struct Offer {
    std::string target;
    std::string type;
    std::uint8_t format = 8;
    std::string bytes;
};

/// A text, as most programs offer it.
std::vector<Offer> textOffers(const std::string& text);

/// How a program treats those that ask for its selections.
struct Manners {
    /// What is asked for is answered so late.
    std::chrono::milliseconds delay{0};
    /// Targets that are refused, and those that are never answered.
    std::set<std::string> refused{};
    std::set<std::string> ignored{};
    /// INCR that never ends, or never goes on after its first part.
    bool isEndless = false;
    bool isStalling = false;
    /// TARGETS as a text.
    bool isLying = false;
};

/// The selections that a program owns. For one thread, which hands it every event.
class SelectionServer {
public:
    explicit SelectionServer(XClient& client, Manners manners = {});

    void take(const std::string& selection, std::vector<Offer> offers);
    void giveUp(const std::string& selection);
    void handle(const xcb_generic_event_t& event);

    /// Called with each target that is asked for, and with each selection that somebody took.
    std::function<void(const std::string&)> onRequest = [](const std::string&) {};
    std::function<void(const std::string&)> onLoss = [](const std::string&) {};

private:
    /// What has not been fetched yet of a property's content, by the requestor's window.
    struct Transfer {
        Offer offer;
        std::size_t place = 0;
    };

    using Place = std::pair<xcb_window_t, xcb_atom_t>;

    void answer(const xcb_selection_request_event_t& request);
    bool put(const xcb_selection_request_event_t& request, xcb_atom_t property);
    void putTargets(const xcb_selection_request_event_t& request, xcb_atom_t property);
    void begin(const Place& place, const Offer& offer);
    void goOn(const xcb_property_notify_event_t& event);
    void change(const Place& place, const Offer& offer, std::string_view bytes);

    XClient& client;
    Manners manners;
    std::map<xcb_atom_t, std::vector<Offer>> selections;
    std::map<Place, Transfer> transfers;
};

} // namespace tavik::test
