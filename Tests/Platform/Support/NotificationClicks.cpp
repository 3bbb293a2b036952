#include "Platform/Support/NotificationClicks.h"

#include "Base/ScreenGeometry.h"
#include "Platform/Linux/AtSpi/AtSpiCalls.h"
#include "Support/ChildProcess.h"

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <thread>
#include <vector>

namespace tavik::test {
namespace {

using Clock = std::chrono::steady_clock;
using Place = std::optional<ScreenRect>;

constexpr std::chrono::seconds patience{10};
/// What moves between two looks at it is not clicked yet.
constexpr std::chrono::milliseconds betweenLooks{100};
/// More than any notification has.
constexpr std::size_t mostChildren = 50;
/// AT-SPI's number for a button.
constexpr std::uint32_t rolePushButton = 43;

std::string xdotool(std::vector<std::string> words) {
    words.insert(words.begin(), "/usr/bin/xdotool");
    return runProcess(std::move(words)).output;
}

/// All of dunst's notifications stand in one window.
Place windowOfDunst() {
    std::istringstream lines(
        xdotool({"search", "--onlyvisible", "--class", "^Dunst$", "getwindowgeometry", "--shell"}));
    std::map<std::string, double> numbers;
    for (std::string line; std::getline(lines, line);)
        if (const auto equals = line.find('='); equals != std::string::npos)
            numbers[line.substr(0, equals)] = std::stod(line.substr(equals + 1));
    if (!numbers.contains("HEIGHT")) return std::nullopt;
    return ScreenRect{numbers["X"], numbers["Y"], numbers["WIDTH"], numbers["HEIGHT"]};
}

/// What shows in the windows of an application, themselves included.
std::vector<AtSpiReference> shownBy(AtSpiCalls& calls, const std::string& application) {
    std::vector<AtSpiReference> pending;
    for (const AtSpiReference& one : calls.applications())
        if (calls.name(one) == application) {
            const auto windows = calls.children(one, mostChildren);
            pending.insert(pending.end(), windows.begin(), windows.end());
        }
    std::vector<AtSpiReference> shown;
    while (!pending.empty()) {
        const AtSpiReference object = pending.back();
        pending.pop_back();
        if (!calls.states(object).contains(atspi::stateShowing)) continue;
        shown.push_back(object);
        const auto children = calls.children(object, mostChildren);
        pending.insert(pending.end(), children.begin(), children.end());
    }
    return shown;
}

Place buttonOfXfce(const std::string& text) {
    AtSpiConnection connection;
    const auto deadline = Clock::now() + patience;
    AtSpiCalls calls(connection.before(deadline), deadline);
    calls.setTimeout(patience);
    for (const AtSpiReference& object : shownBy(calls, "xfce4-notifyd"))
        if (calls.role(object) == rolePushButton && calls.name(object) == text)
            return calls.extents(object);
    return std::nullopt;
}

template<typename Look>
Place awaitStill(Look look) {
    const auto deadline = Clock::now() + patience;
    Place last;
    while (Clock::now() < deadline) {
        const Place present = look();
        if (present && present == last) return present;
        last = present;
        std::this_thread::sleep_for(betweenLooks);
    }
    return std::nullopt;
}

bool click(const Place& place, const std::string& button) {
    if (!place) return false;
    const auto x = static_cast<int>(place->x + place->width / 2);
    const auto y = static_cast<int>(place->y + place->height / 2);
    xdotool({"mousemove", std::to_string(x), std::to_string(y), "click", button});
    return true;
}

} // namespace

bool clickNotificationButton(const std::string& daemon, const std::string& text) {
    if (daemon == "notifications-dunst") return click(awaitStill(windowOfDunst), "2");
    if (daemon == "notifications-xfce")
        return click(awaitStill([&] { return buttonOfXfce(text); }), "1");
    throw std::invalid_argument("no notification service: " + daemon);
}

} // namespace tavik::test
