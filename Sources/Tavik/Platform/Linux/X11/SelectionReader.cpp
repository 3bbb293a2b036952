#include "Platform/Linux/X11/SelectionReader.h"

#include <QByteArray>
#include <QString>
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <utility>

namespace tavik {
namespace {

constexpr std::size_t maxTargets = 1000;
/// Of all that a selection offers. A screenshot in several formats is well below.
constexpr std::size_t maxBytes = std::size_t{256} << 20U;
/// Before it has come.
constexpr std::size_t maxReserved = std::size_t{64} << 20U;
/// Nobody looks up more.
constexpr std::size_t maxTextBytes = std::size_t{4} << 20U;
/// Of late answers.
constexpr int maxLateParts = 5000;
constexpr std::size_t maxAbandoned = 16;

/// How much comes in parts, at least; 0 when the owner does not tell.
std::size_t sizeAnnounced(const SelectionData& start) {
    std::uint32_t size = 0;
    if (start.format == 32 && start.bytes.size() >= sizeof(size))
        std::memcpy(&size, start.bytes.data(), sizeof(size));
    return size;
}

std::string textOf(const SelectionData& data) {
    const QByteArray bytes(
        reinterpret_cast<const char*>(data.bytes.data()), // NOLINT: bytes of text
        static_cast<qsizetype>(data.bytes.size()));
    // Some owners count the end of the string.
    const qsizetype end = bytes.indexOf('\0');
    const QByteArray text = end < 0 ? bytes : bytes.left(end);
    const bool isLatin1 = data.type == XCB_ATOM_STRING;
    return (isLatin1 ? QString::fromLatin1(text) : QString::fromUtf8(text)).toStdString();
}

} // namespace

SelectionContentsRef SelectionReader::contents(xcb_atom_t selection, Clock::time_point until) {
    begin();
    auto found = readContents(selection, until);
    end(found != nullptr);
    return found;
}

SelectionContentsRef SelectionReader::readContents(xcb_atom_t selection,
                                                   Clock::time_point until) const {
    const auto offered = targets(selection, until);
    if (!offered) return nullptr;
    auto contents = std::make_shared<SelectionContents>();
    std::size_t bytesLeft = maxBytes;
    for (const xcb_atom_t target : *offered) {
        if (window.atoms().isNoData(target)) continue;
        SelectionData data;
        const Answer answer = convert({selection, target, bytesLeft, until}, data);
        if (answer == Answer::none) return nullptr;
        bytesLeft -= data.bytes.size();
        contents->targets.push_back(
            {target, answer == Answer::data ? std::optional(std::move(data)) : std::nullopt});
    }
    return contents;
}

std::optional<std::vector<xcb_atom_t>> SelectionReader::targets(xcb_atom_t selection,
                                                                Clock::time_point until) const {
    SelectionData data;
    const Request request{selection, window.atoms()[SelectionAtoms::targets],
                          maxTargets * sizeof(xcb_atom_t), until};
    if (convert(request, data) != Answer::data || data.format != 32) return std::nullopt;
    std::vector<xcb_atom_t> found(data.unitCount());
    std::memcpy(found.data(), data.bytes.data(), found.size() * sizeof(xcb_atom_t));
    return found;
}

std::optional<std::string> SelectionReader::string(xcb_atom_t selection, Clock::time_point until) {
    begin();
    for (const xcb_atom_t target :
         {window.atoms()[SelectionAtoms::utf8String], window.atoms()[SelectionAtoms::utf8Text],
          XCB_ATOM_STRING + 0U}) {
        SelectionData data;
        const Answer answer = convert({selection, target, maxTextBytes, until}, data);
        if (answer == Answer::refused) continue;
        end(answer == Answer::data);
        if (answer == Answer::none || data.format != 8) return std::nullopt;
        return textOf(data);
    }
    end(true);
    return std::nullopt;
}

void SelectionReader::begin() {
    constexpr std::uint32_t noticed = XCB_EVENT_MASK_PROPERTY_CHANGE;
    requestor = xcb_generate_id(window.connection());
    xcb_create_window(window.connection(), 0, requestor, window.root(), -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK,
                      &noticed);
}

/// An owner that writes to a window that is gone may not survive it.
void SelectionReader::end(bool isComplete) {
    if (isComplete) {
        xcb_destroy_window(window.connection(), requestor);
        return;
    }
    xcb_delete_property(window.connection(), requestor, window.atoms()[SelectionAtoms::transfer]);
    abandoned.push_back({requestor, maxLateParts});
    if (abandoned.size() <= maxAbandoned) return;
    xcb_destroy_window(window.connection(), abandoned.front().requestor);
    abandoned.erase(abandoned.begin());
}

void SelectionReader::handle(const xcb_generic_event_t& event) {
    if (abandoned.empty() || kindOf(event) != XCB_PROPERTY_NOTIFY) return;
    const auto& change = as<xcb_property_notify_event_t>(event);
    const auto late = std::ranges::find(abandoned, change.window, &Abandoned::requestor);
    if (late == abandoned.end() || change.state != XCB_PROPERTY_NEW_VALUE) return;
    xcb_delete_property(window.connection(), change.window, change.atom);
    if (--late->partsLeft > 0) return;
    xcb_destroy_window(window.connection(), late->requestor);
    abandoned.erase(late);
}

SelectionReader::Answer SelectionReader::convert(const Request& request,
                                                 SelectionData& data) const {
    const xcb_atom_t property = window.atoms()[SelectionAtoms::transfer];
    const auto time = window.serverTime(request.until);
    if (!time) return Answer::none;
    xcb_convert_selection(window.connection(), requestor, request.selection, request.target,
                          property, *time);
    xcb_atom_t answered = XCB_ATOM_NONE;
    const auto isAnswer = [&](const xcb_generic_event_t& event) {
        if (kindOf(event) != XCB_SELECTION_NOTIFY) return false;
        const auto& notice = as<xcb_selection_notify_event_t>(event);
        if (notice.requestor != requestor || notice.selection != request.selection
            || notice.target != request.target)
            return false;
        answered = notice.property;
        return true;
    };
    if (!window.await(isAnswer, request.until)) return Answer::none;
    return answered == property ? receive(request, data) : Answer::refused;
}

SelectionReader::Answer SelectionReader::receive(const Request& request,
                                                 SelectionData& data) const {
    bool isThere = false;
    if (!take(data, request.maxBytes, isThere)) return Answer::none;
    if (!isThere) return Answer::refused;
    if (data.type != window.atoms()[SelectionAtoms::incremental]) return Answer::data;
    const std::size_t announced = sizeAnnounced(data);
    data = {};
    data.bytes.reserve(std::min({announced, request.maxBytes, maxReserved}));
    return receiveParts(request, data) ? Answer::data : Answer::none;
}

/// The owner puts the next part there whenever the last one was taken, and in the end one without
/// anything in it.
bool SelectionReader::receiveParts(const Request& request, SelectionData& data) const {
    const auto isPart = [&](const xcb_generic_event_t& event) {
        if (kindOf(event) != XCB_PROPERTY_NOTIFY) return false;
        const auto& change = as<xcb_property_notify_event_t>(event);
        return change.window == requestor && change.atom == window.atoms()[SelectionAtoms::transfer]
               && change.state == XCB_PROPERTY_NEW_VALUE;
    };
    while (window.await(isPart, request.until)) {
        const std::size_t before = data.bytes.size();
        bool isThere = false;
        if (!take(data, request.maxBytes - before, isThere)) return false;
        if (isThere && data.bytes.size() == before) return true;
    }
    return false;
}

/// Takes the property away and adds it to `data`. Whether that makes sense: it is of one format
/// with what is there, and not too much.
bool SelectionReader::take(SelectionData& data, std::size_t maxBytes, bool& isThere) const {
    const auto words = static_cast<std::uint32_t>(maxBytes / 4 + 1);
    const auto request = xcb_get_property(window.connection(), 1, requestor,
                                          window.atoms()[SelectionAtoms::transfer],
                                          XCB_GET_PROPERTY_TYPE_ANY, 0, words);
    const XCBReply<xcb_get_property_reply_t> part(
        xcb_get_property_reply(window.connection(), request, nullptr));
    if (!part) return false;
    isThere = part->type != XCB_ATOM_NONE;
    if (!isThere) return true;
    const auto size = static_cast<std::size_t>(xcb_get_property_value_length(part.get()));
    if (part->bytes_after > 0 || size > maxBytes) return false;
    if (data.type == XCB_ATOM_NONE) {
        data.type = part->type;
        data.format = part->format;
    }
    if (size > 0 && part->format != data.format) return false;
    const auto* first = static_cast<const std::uint8_t*>(xcb_get_property_value(part.get()));
    data.bytes.insert(data.bytes.end(), first, first + size);
    return true;
}

} // namespace tavik
