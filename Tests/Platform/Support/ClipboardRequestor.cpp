#include "Platform/Support/ClipboardRequestor.h"

#include <cstring>
#include <set>
#include <stdexcept>

namespace tavik::test {
namespace {

constexpr std::chrono::seconds patience{20};

/// What is asked for without being a content.
const std::set<std::string>& questions() {
    static const std::set<std::string> names{"TARGETS", "MULTIPLE", "TIMESTAMP", "SAVE_TARGETS",
                                             "DELETE"};
    return names;
}

template<typename Event>
const Event& as(const XClient::Event& event) {
    return *reinterpret_cast<const Event*>(event.get()); // NOLINT
}

std::vector<xcb_atom_t> atomsIn(const std::string& bytes) {
    std::vector<xcb_atom_t> atoms(bytes.size() / sizeof(xcb_atom_t));
    std::memcpy(atoms.data(), bytes.data(), atoms.size() * sizeof(xcb_atom_t));
    return atoms;
}

} // namespace

std::vector<std::string> ClipboardRequestor::targets() {
    std::vector<std::string> names;
    const auto list = read("TARGETS");
    for (const xcb_atom_t atom : atomsIn(list ? list->bytes : ""))
        names.push_back(client.nameOf(atom));
    return names;
}

std::optional<Conversion> ClipboardRequestor::read(const std::string& target) {
    convert(target);
    if (!awaitAnswer()) return std::nullopt;
    return fetchWhole(place);
}

std::string ClipboardRequestor::text() {
    const auto found = read("UTF8_STRING");
    return found ? found->bytes : "";
}

Contents ClipboardRequestor::contents() {
    Contents found;
    for (const std::string& target : contentTargets())
        if (auto content = read(target)) found.emplace(target, *std::move(content));
    return found;
}

Contents ClipboardRequestor::contentsAtOnce() {
    const auto targets = contentTargets();
    std::vector<xcb_atom_t> pairs;
    for (const std::string& target : targets) {
        pairs.push_back(client.atom(target));
        pairs.push_back(client.atom("TAVIK_TEST_OF_" + target));
    }
    xcb_change_property(client.connection(), XCB_PROP_MODE_REPLACE, client.window(), place,
                        client.atom("ATOM_PAIR"), 32, static_cast<std::uint32_t>(pairs.size()),
                        pairs.data());
    xcb_convert_selection(client.connection(), client.window(), clipboard, client.atom("MULTIPLE"),
                          place, XCB_CURRENT_TIME);
    Contents found;
    if (!awaitAnswer()) return found;
    // What was refused has no property to go to any more.
    pairs = atomsIn(fetch(place).bytes);
    for (std::size_t i = 0; i + 1 < pairs.size() && i / 2 < targets.size(); i += 2)
        if (pairs[i + 1] != XCB_NONE) found.emplace(targets[i / 2], fetchWhole(pairs[i + 1]));
    return found;
}

void ClipboardRequestor::begin(const std::string& target) {
    convert(target);
    conversion = {"none", 0, {}};
    isInParts = false;
    if (!awaitAnswer()) return;
    conversion = fetch(place);
    isInParts = conversion.type == "INCR";
    if (isInParts) conversion = {};
}

bool ClipboardRequestor::next() {
    if (!isInParts) return false;
    awaitPart(place);
    const Conversion part = fetch(place);
    conversion.type = part.type;
    conversion.format = part.format;
    conversion.bytes += part.bytes;
    isInParts = !part.bytes.empty();
    return isInParts;
}

std::vector<std::string> ClipboardRequestor::contentTargets() {
    auto names = targets();
    std::erase_if(names, [](const std::string& name) { return questions().contains(name); });
    return names;
}

void ClipboardRequestor::convert(const std::string& target) {
    xcb_delete_property(client.connection(), client.window(), place);
    xcb_convert_selection(client.connection(), client.window(), clipboard, client.atom(target),
                          place, XCB_CURRENT_TIME);
}

bool ClipboardRequestor::awaitAnswer() {
    while (const XClient::Event event = client.nextEvent(patience))
        if ((event->response_type & 0x7f) == XCB_SELECTION_NOTIFY)
            return as<xcb_selection_notify_event_t>(event).property != XCB_NONE;
    throw std::runtime_error("the clipboard does not answer");
}

void ClipboardRequestor::awaitPart(xcb_atom_t property) {
    while (const XClient::Event event = client.nextEvent(patience)) {
        if ((event->response_type & 0x7f) != XCB_PROPERTY_NOTIFY) continue;
        const auto& change = as<xcb_property_notify_event_t>(event);
        if (change.atom == property && change.state == XCB_PROPERTY_NEW_VALUE) return;
    }
    throw std::runtime_error("the clipboard does not go on");
}

Conversion ClipboardRequestor::fetch(xcb_atom_t property) {
    constexpr std::uint32_t longest = 64'000'000;
    const auto request = xcb_get_property(client.connection(), 1, client.window(), property,
                                          XCB_GET_PROPERTY_TYPE_ANY, 0, longest);
    const XCBReply<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(client.connection(), request, nullptr));
    if (!reply || reply->type == XCB_NONE) return {"none", 0, {}};
    const auto size = static_cast<std::size_t>(xcb_get_property_value_length(reply.get()));
    const auto* bytes = static_cast<const char*>(xcb_get_property_value(reply.get()));
    return {client.nameOf(reply->type), reply->format, std::string(bytes, size)};
}

Conversion ClipboardRequestor::fetchWhole(xcb_atom_t property) {
    Conversion whole = fetch(property);
    if (whole.type != "INCR") return whole;
    whole = {};
    while (true) {
        awaitPart(property);
        Conversion part = fetch(property);
        whole.type = part.type;
        whole.format = part.format;
        if (part.bytes.empty()) return whole;
        whole.bytes += part.bytes;
    }
}

} // namespace tavik::test
