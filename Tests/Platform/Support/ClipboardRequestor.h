#pragma once

#include "Platform/Support/XClient.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace tavik::test {

/// What a target was converted to.
struct Conversion {
    std::string type;
    std::uint8_t format = 0;
    std::string bytes;

    bool operator==(const Conversion&) const = default;
};

using Contents = std::map<std::string, Conversion>;

/// A client that pastes from CLIPBOARD. Throws `std::runtime_error` when nobody answers it for
/// twenty seconds. For one thread.
class ClipboardRequestor {
public:
    /// XCB_NONE where nobody owns it.
    xcb_window_t owner() { return client.ownerOf("CLIPBOARD"); }

    std::vector<std::string> targets();
    /// Nothing when the target is refused.
    std::optional<Conversion> read(const std::string& target);
    /// The UTF-8 text; empty when there is none.
    std::string text();
    /// Every target that carries a content, read one by one or asked for all at once.
    Contents contents();
    Contents contentsAtOnce();

    /// Asks for a target, part by part where it is large: `next` fetches one and tells whether that
    /// was not the last. `received` is what has come so far.
    void begin(const std::string& target);
    bool next();

    const Conversion& received() const { return conversion; }

private:
    std::vector<std::string> contentTargets();
    void convert(const std::string& target);
    /// Whether the answer was no refusal.
    bool awaitAnswer();
    void awaitPart(xcb_atom_t property);
    /// Takes a property away; a type of "none" stands for one that is not there.
    Conversion fetch(xcb_atom_t property);
    Conversion fetchWhole(xcb_atom_t property);

    XClient client;
    xcb_atom_t clipboard = client.atom("CLIPBOARD");
    xcb_atom_t place = client.atom("TAVIK_TEST_PLACE");
    Conversion conversion;
    bool isInParts = false;
};

} // namespace tavik::test
