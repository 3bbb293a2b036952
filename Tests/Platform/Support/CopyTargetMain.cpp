// An application that copies, for the tests of the clipboard: tavik-copy-target [NAME=VALUE…]
//
// Its window answers Ctrl+C by taking CLIPBOARD with a text:
//   text=TEXT       this one; without it, nothing is copied. @FILE stands for what a file holds
//   latin=TEXT      the same, offered as STRING alone
//   after=MS        so late
//   again=MS        once more, so long after the keys
//   clipboard=TEXT  owns CLIPBOARD from the beginning
//   primary=TEXT    owns PRIMARY from the beginning
//   ping=HOW        "answered" or "ignored": says that it responds to the window manager's pings
//   class=NAME      of its window
//
// Prints "ready", then a line for each key, "press c 4" or "release Control_L 4", with the state of
// the modifiers before it, and "took" whenever it has taken CLIPBOARD.

#include "Platform/Support/SelectionServer.h"

#include <unistd.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <string>
#include <vector>

namespace tavik::test {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

class CopyTarget {
public:
    explicit CopyTarget(std::map<std::string, std::string> options)
        : options(std::move(options)), server(client) {
        if (has("clipboard")) server.take("CLIPBOARD", textOffers(option("clipboard")));
        if (has("primary")) server.take("PRIMARY", textOffers(option("primary")));
        window = xcb_generate_id(client.connection());
        const std::uint32_t events =
            XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE | XCB_EVENT_MASK_BUTTON_PRESS;
        xcb_create_window(client.connection(), XCB_COPY_FROM_PARENT, window, client.root(), 100,
                          100, 300, 200, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                          XCB_CW_EVENT_MASK, &events);
        describeWindow();
        xcb_map_window(client.connection(), window);
        std::cout << "ready" << std::endl;
    }

    void run() {
        while (xcb_connection_has_error(client.connection()) == 0) {
            const auto next = std::ranges::min_element(copies);
            const auto wait = next == copies.end()
                                  ? milliseconds(60'000)
                                  : std::chrono::ceil<milliseconds>(*next - Clock::now());
            if (const auto event = client.nextEvent(wait)) handle(*event);
            if (!copies.empty()) copyIfDue();
        }
    }

private:
    bool has(const std::string& name) const { return options.contains(name); }

    std::string option(const std::string& name) const {
        const auto found = options.find(name);
        return found == options.end() ? "" : found->second;
    }

    void setText(const std::string& name, const std::string& type, const std::string& text) {
        xcb_change_property(client.connection(), XCB_PROP_MODE_REPLACE, window, client.atom(name),
                            client.atom(type), 8, static_cast<std::uint32_t>(text.size()),
                            text.data());
    }

    void describeWindow() {
        const std::string name = has("class") ? option("class") : "copy-target";
        setText("WM_CLASS", "STRING", name + '\0' + name + '\0');
        setText("WM_NAME", "STRING", name);
        const auto process = static_cast<std::uint32_t>(getpid());
        xcb_change_property(client.connection(), XCB_PROP_MODE_REPLACE, window,
                            client.atom("_NET_WM_PID"), XCB_ATOM_CARDINAL, 32, 1, &process);
        if (!has("ping")) return;
        const xcb_atom_t protocol = client.atom("_NET_WM_PING");
        xcb_change_property(client.connection(), XCB_PROP_MODE_REPLACE, window,
                            client.atom("WM_PROTOCOLS"), XCB_ATOM_ATOM, 32, 1, &protocol);
    }

    void handle(const xcb_generic_event_t& event) {
        const int kind = event.response_type & 0x7f;
        if (kind == XCB_KEY_PRESS || kind == XCB_KEY_RELEASE)
            handleKey(reinterpret_cast<const xcb_key_press_event_t&>(event)); // NOLINT
        else if (kind == XCB_CLIENT_MESSAGE)
            answer(reinterpret_cast<const xcb_client_message_event_t&>(event)); // NOLINT
        else
            server.handle(event);
    }

    void handleKey(const xcb_key_press_event_t& event) {
        const bool isPress = (event.response_type & 0x7f) == XCB_KEY_PRESS;
        const std::string name = client.keyName(event.detail);
        std::cout << (isPress ? "press " : "release ") << name << ' ' << event.state << std::endl;
        if (!isPress || name != "c" || (event.state & XCB_MOD_MASK_CONTROL) == 0) return;
        if (!has("text") && !has("latin")) return;
        const auto late = [this](const std::string& name) {
            return Clock::now() + milliseconds(std::stoi("0" + option(name)));
        };
        copies.push_back(late("after"));
        if (has("again")) copies.push_back(late("again"));
    }

    void copyIfDue() {
        const auto due = std::ranges::min_element(copies);
        if (*due > Clock::now()) return;
        copies.erase(due);
        if (has("text"))
            server.take("CLIPBOARD", textOffers(copiedText()));
        else
            server.take("CLIPBOARD", {{"STRING", "STRING", 8, option("latin")}});
        std::cout << "took" << std::endl;
    }

    std::string copiedText() const {
        std::string text = option("text");
        if (!text.starts_with('@')) return text;
        std::ifstream file(text.substr(1), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    void answer(xcb_client_message_event_t message) {
        if (option("ping") != "answered") return;
        message.window = client.root();
        xcb_send_event(client.connection(), 0, client.root(),
                       XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                       reinterpret_cast<const char*>(&message)); // NOLINT
        xcb_flush(client.connection());
    }

    std::map<std::string, std::string> options;
    XClient client;
    SelectionServer server;
    xcb_window_t window = XCB_NONE;
    /// When to take CLIPBOARD.
    std::vector<Clock::time_point> copies;
};

} // namespace
} // namespace tavik::test

int main(int count, char** words) {
    std::map<std::string, std::string> options;
    for (const std::string& word : std::vector<std::string>(words + 1, words + count)) {
        const auto equals = word.find('=');
        options.emplace(word.substr(0, equals),
                        equals == std::string::npos ? "" : word.substr(equals + 1));
    }
    try {
        tavik::test::CopyTarget(options).run();
    } catch (const std::exception& error) {
        std::cerr << "tavik-copy-target: " << error.what() << '\n';
        return 1;
    }
}
