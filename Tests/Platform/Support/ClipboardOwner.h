#pragma once

#include "Platform/Support/SelectionServer.h"

#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace tavik::test {

/// A client that owns a selection, and serves it from a thread of its own until the object goes.
class ClipboardOwner {
public:
    explicit ClipboardOwner(std::vector<Offer> offers, Manners manners = {},
                            const std::string& selection = "CLIPBOARD");
    ~ClipboardOwner();
    ClipboardOwner(const ClipboardOwner&) = delete;
    ClipboardOwner& operator=(const ClipboardOwner&) = delete;

    xcb_window_t window() const { return client.window(); }

    /// How often the selection was taken from it.
    int losses() const;
    /// How often a target was asked for.
    int requests(const std::string& target) const;

private:
    void run();

    XClient client;
    SelectionServer server;
    xcb_atom_t farewell;
    mutable std::mutex mutex;
    int lossCount = 0;
    std::map<std::string, int> requestCounts;
    std::thread thread;
};

} // namespace tavik::test
