#include "Platform/Support/ScreenReader.h"

#include <chrono>

namespace tavik::test {
namespace {

constexpr std::chrono::milliseconds patience{20'000};
/// More than any window has.
constexpr std::size_t most = 200;

} // namespace

std::vector<ShownControl> ScreenReader::window(const std::string& title) {
    const auto deadline = std::chrono::steady_clock::now() + patience;
    AtSpiCalls calls(connection.before(deadline), deadline);
    calls.setTimeout(patience);
    std::vector<AtSpiReference> pending;
    for (const AtSpiReference& application : calls.applications())
        if (calls.processIdentifier(application.bus) == process)
            for (const AtSpiReference& window : calls.children(application, most))
                if (calls.name(window) == title) pending.push_back(window);
    std::vector<ShownControl> shown;
    while (!pending.empty()) {
        const AtSpiReference object = pending.back();
        pending.pop_back();
        ShownControl control{object, calls.role(object).value_or(0), calls.name(object), {}, {}};
        if (const auto count = calls.characterCount(object))
            control.text = calls.text(object, 0, *count).value_or("");
        // Asked last: what has gone in between shows no more.
        control.states = calls.states(object);
        if (!control.states.contains(atspi::stateShowing)) continue;
        shown.push_back(control);
        const auto children = calls.children(object, most);
        pending.insert(pending.end(), children.rbegin(), children.rend());
    }
    return shown;
}

bool ScreenReader::act(const ShownControl& control) {
    const auto bus = connection.before(std::chrono::steady_clock::now() + patience);
    if (!bus) return false;
    const VariantHandle answer(g_dbus_connection_call_sync(
        bus.get(), control.object.bus.c_str(), control.object.path.c_str(), "org.a11y.atspi.Action",
        "DoAction", g_variant_new("(i)", 0), G_VARIANT_TYPE("(b)"), G_DBUS_CALL_FLAGS_NO_AUTO_START,
        static_cast<int>(patience.count()), nullptr, nullptr));
    gboolean isDone = FALSE;
    if (answer) g_variant_get(answer.get(), "(b)", &isDone);
    return isDone != FALSE;
}

} // namespace tavik::test
