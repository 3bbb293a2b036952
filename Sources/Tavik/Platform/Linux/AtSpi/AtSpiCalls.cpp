#include "Platform/Linux/AtSpi/AtSpiCalls.h"

#include "Ports/Accessibility.h"

#include <algorithm>
#include <thread>

namespace tavik {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

constexpr const char* accessible = "org.a11y.atspi.Accessible";
constexpr const char* text_ = "org.a11y.atspi.Text";
constexpr const char* component = "org.a11y.atspi.Component";

constexpr std::uint32_t canonicalOrder = 1;
constexpr std::uint32_t screenCoordinates = 0;

/// What no sound answer has more of.
constexpr gsize mostReferences = 100'000;

VariantHandle item(const VariantHandle& tuple, gsize index = 0) {
    return VariantHandle(tuple ? g_variant_get_child_value(tuple.get(), index) : nullptr);
}

AtSpiReference referenceOf(GVariant* pair) {
    const char* bus = nullptr;
    const char* path = nullptr;
    g_variant_get(pair, "(&s&o)", &bus, &path);
    return {bus, path};
}

AtSpiReference referenceFrom(const VariantHandle& answer) {
    const VariantHandle pair = item(answer);
    return pair ? referenceOf(pair.get()) : AtSpiReference{};
}

std::vector<AtSpiReference> referencesOf(const VariantHandle& answer, std::size_t limit) {
    const VariantHandle list = item(answer);
    std::vector<AtSpiReference> references;
    if (!list) return references;
    const gsize count = std::min({g_variant_n_children(list.get()), limit, mostReferences});
    for (gsize i = 0; i < count; ++i)
        references.push_back(referenceOf(item(list, i).get()));
    return references;
}

std::string stringOf(const VariantHandle& value) {
    return value ? textOf(value.get()) : std::string();
}

std::optional<ScreenRect> rectangleOf(const VariantHandle& four) {
    if (!four) return std::nullopt;
    gint32 x = 0;
    gint32 y = 0;
    gint32 width = 0;
    gint32 height = 0;
    g_variant_get(four.get(), "(iiii)", &x, &y, &width, &height);
    // What is hidden stands at the lowest of all numbers.
    constexpr gint32 farthest = 1'000'000;
    for (const gint32 side : {x, y, width, height})
        if (side < -farthest || side > farthest) return std::nullopt;
    return ScreenRect{double(x), double(y), double(width), double(height)};
}

GVariant* numbers(const std::vector<gint32>& values) {
    return g_variant_new_fixed_array(G_VARIANT_TYPE_INT32, values.data(), values.size(),
                                     sizeof(gint32));
}

/// A rule that every object follows that has the state.
GVariant* ruleForState(atspi::State state) {
    constexpr int all = 1;
    return g_variant_new("(@aii@a{ss}i@aii@asib)", numbers({1 << state, 0}), all,
                         g_variant_new_array(G_VARIANT_TYPE("{ss}"), nullptr, 0), all,
                         numbers({0, 0, 0, 0}), all,
                         g_variant_new_array(G_VARIANT_TYPE_STRING, nullptr, 0), all, FALSE);
}

} // namespace

bool AtSpiReference::isNull() const {
    return bus.empty() || path.empty() || path == "/org/a11y/atspi/null";
}

AtSpiCalls::AtSpiCalls(std::shared_ptr<GDBusConnection> connection,
                       AtSpiConnection::Deadline deadline)
    : connection(std::move(connection)), deadline(deadline) {}

AtSpiCalls::Glance::Glance(AtSpiCalls& calls, milliseconds limit)
    : calls(calls), usual(calls.timeout) {
    calls.timeout = limit;
    calls.isGlancing = true;
}

AtSpiCalls::Glance::~Glance() {
    calls.timeout = usual;
    calls.isGlancing = false;
}

void AtSpiCalls::endLate(const char* reason) {
    isTimeUp = true;
    end(reason);
}

void AtSpiCalls::end(const char* reason) {
    isOver = true;
    throw AccessibilityFailure(reason);
}

void AtSpiCalls::pause(milliseconds time) {
    std::this_thread::sleep_until(std::min(deadline, Clock::now() + time));
}

VariantHandle AtSpiCalls::call(const AtSpiReference& object, const char* interface,
                               const char* method, GVariant* arguments, const char* answerType) {
    const VariantHandle owned = ownedVariant(arguments);
    if (object.isNull()) return {};
    const auto left = std::chrono::duration_cast<milliseconds>(deadline - Clock::now());
    if (isOver) end("the session is over");
    if (left.count() <= 0) endLate("the time of the session is up");
    if (!connection) end("no accessibility bus");
    // An address that is none would be a fault of ours to GLib.
    if (!g_dbus_is_name(object.bus.c_str())) return {};
    GError* failure = nullptr;
    VariantHandle answer(g_dbus_connection_call_sync(
        connection.get(), object.bus.c_str(), object.path.c_str(), interface, method, owned.get(),
        G_VARIANT_TYPE(answerType), G_DBUS_CALL_FLAGS_NO_AUTO_START,
        static_cast<int>(std::min(left, timeout).count()), nullptr, &failure));
    const ErrorHandle error(failure);
    if (answer) return answer;
    if (g_error_matches(failure, G_IO_ERROR, G_IO_ERROR_CLOSED)) end("the bus is lost");
    if (g_error_matches(failure, G_IO_ERROR, G_IO_ERROR_TIMED_OUT) && !isGlancing)
        endLate("an application did not answer in time");
    return {};
}

VariantHandle AtSpiCalls::property(const AtSpiReference& object, const char* interface,
                                   const char* name, const char* type) {
    const VariantHandle answer = call(object, "org.freedesktop.DBus.Properties", "Get",
                                      g_variant_new("(ss)", interface, name), "(v)");
    const VariantHandle boxed = item(answer);
    if (!boxed) return {};
    VariantHandle value(g_variant_get_variant(boxed.get()));
    if (!g_variant_is_of_type(value.get(), G_VARIANT_TYPE(type))) return {};
    return value;
}

AtSpiReference AtSpiCalls::desktop() {
    return {"org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root"};
}

std::vector<AtSpiReference> AtSpiCalls::applications() {
    return referencesOf(call(desktop(), accessible, "GetChildren", nullptr, "(a(so))"), 1000);
}

std::optional<std::int64_t> AtSpiCalls::processIdentifier(const std::string& bus) {
    const AtSpiReference daemon{"org.freedesktop.DBus", "/org/freedesktop/DBus"};
    const VariantHandle number =
        item(call(daemon, "org.freedesktop.DBus", "GetConnectionUnixProcessID",
                  g_variant_new("(s)", bus.c_str()), "(u)"));
    if (!number) return std::nullopt;
    return g_variant_get_uint32(number.get());
}

std::string AtSpiCalls::toolkitName(const AtSpiReference& application) {
    return stringOf(property(application, "org.a11y.atspi.Application", "ToolkitName", "s"));
}

std::optional<std::uint32_t> AtSpiCalls::role(const AtSpiReference& object) {
    const VariantHandle number = item(call(object, accessible, "GetRole", nullptr, "(u)"));
    if (!number) return std::nullopt;
    return g_variant_get_uint32(number.get());
}

AtSpiStates AtSpiCalls::states(const AtSpiReference& object) {
    const VariantHandle words = item(call(object, accessible, "GetState", nullptr, "(au)"));
    if (!words || g_variant_n_children(words.get()) != 2) return {};
    const std::uint64_t low = g_variant_get_uint32(item(words, 0).get());
    const std::uint64_t high = g_variant_get_uint32(item(words, 1).get());
    return AtSpiStates(low | high << 32U);
}

std::string AtSpiCalls::name(const AtSpiReference& object) {
    return stringOf(property(object, accessible, "Name", "s"));
}

AtSpiReference AtSpiCalls::parent(const AtSpiReference& object) {
    const VariantHandle pair = property(object, accessible, "Parent", "(so)");
    return pair ? referenceOf(pair.get()) : AtSpiReference{};
}

std::vector<AtSpiReference> AtSpiCalls::children(const AtSpiReference& object, std::size_t limit) {
    const VariantHandle number = property(object, accessible, "ChildCount", "i");
    const gint32 count = number ? g_variant_get_int32(number.get()) : 0;
    if (count <= 0) return {};
    if (static_cast<std::size_t>(count) <= limit)
        return referencesOf(call(object, accessible, "GetChildren", nullptr, "(a(so))"), limit);
    std::vector<AtSpiReference> first;
    for (std::size_t i = 0; i < limit; ++i)
        first.push_back(child(object, static_cast<std::int32_t>(i)));
    return first;
}

AtSpiReference AtSpiCalls::child(const AtSpiReference& object, std::int32_t index) {
    return referenceFrom(
        call(object, accessible, "GetChildAtIndex", g_variant_new("(i)", index), "((so))"));
}

std::map<std::string, std::string> AtSpiCalls::attributes(const AtSpiReference& object) {
    const VariantHandle all = item(call(object, accessible, "GetAttributes", nullptr, "(a{ss})"));
    std::map<std::string, std::string> attributes;
    if (!all) return attributes;
    for (gsize i = 0; i < std::min(g_variant_n_children(all.get()), mostReferences); ++i) {
        const VariantHandle pair = item(all, i);
        attributes.emplace(stringOf(item(pair, 0)), stringOf(item(pair, 1)));
    }
    return attributes;
}

AtSpiReference AtSpiCalls::focusedBelow(const AtSpiReference& object) {
    // One match only: to collect more, some applications walk through all they have.
    const VariantHandle answer =
        call(object, "org.a11y.atspi.Collection", "GetMatches",
             g_variant_new("(@(aiia{ss}iaiiasib)uib)", ruleForState(atspi::stateFocused),
                           canonicalOrder, 1, TRUE),
             "(a(so))");
    const auto found = referencesOf(answer, 1);
    return found.empty() ? AtSpiReference{} : found.front();
}

std::optional<std::int32_t> AtSpiCalls::characterCount(const AtSpiReference& object) {
    const VariantHandle number = property(object, text_, "CharacterCount", "i");
    if (!number) return std::nullopt;
    return g_variant_get_int32(number.get());
}

std::optional<std::int32_t> AtSpiCalls::caretOffset(const AtSpiReference& object) {
    const VariantHandle number = property(object, text_, "CaretOffset", "i");
    if (!number) return std::nullopt;
    return g_variant_get_int32(number.get());
}

std::optional<std::string> AtSpiCalls::text(const AtSpiReference& object, std::int32_t start,
                                            std::int32_t end) {
    const VariantHandle text =
        item(call(object, text_, "GetText", g_variant_new("(ii)", start, end), "(s)"));
    // What is longer than it can be was never counted.
    constexpr std::int64_t bytesPerCharacter = 4;
    const std::int64_t most = (std::int64_t{end} - start) * bytesPerCharacter + 1;
    if (!text || static_cast<std::int64_t>(g_variant_get_size(text.get())) > most)
        return std::nullopt;
    return textOf(text.get());
}

std::optional<std::int32_t> AtSpiCalls::selectionCount(const AtSpiReference& object) {
    const VariantHandle number = item(call(object, text_, "GetNSelections", nullptr, "(i)"));
    if (!number) return std::nullopt;
    return g_variant_get_int32(number.get());
}

std::optional<AtSpiRange> AtSpiCalls::selection(const AtSpiReference& object) {
    const VariantHandle ends = call(object, text_, "GetSelection", g_variant_new("(i)", 0), "(ii)");
    if (!ends) return std::nullopt;
    AtSpiRange range;
    g_variant_get(ends.get(), "(ii)", &range.first, &range.second);
    return range;
}

std::optional<ScreenRect> AtSpiCalls::rangeExtents(const AtSpiReference& object, AtSpiRange range) {
    return rectangleOf(call(object, text_, "GetRangeExtents",
                            g_variant_new("(iiu)", range.first, range.second, screenCoordinates),
                            "(iiii)"));
}

std::optional<ScreenRect> AtSpiCalls::characterExtents(const AtSpiReference& object,
                                                       std::int32_t offset) {
    return rectangleOf(call(object, text_, "GetCharacterExtents",
                            g_variant_new("(iu)", offset, screenCoordinates), "(iiii)"));
}

std::optional<std::int32_t> AtSpiCalls::offsetAt(const AtSpiReference& object, double x, double y) {
    const VariantHandle number = item(call(
        object, text_, "GetOffsetAtPoint",
        g_variant_new("(iiu)", static_cast<gint32>(x), static_cast<gint32>(y), screenCoordinates),
        "(i)"));
    if (!number) return std::nullopt;
    return g_variant_get_int32(number.get());
}

std::optional<ScreenRect> AtSpiCalls::extents(const AtSpiReference& object) {
    return rectangleOf(item(call(object, component, "GetExtents",
                                 g_variant_new("(u)", screenCoordinates), "((iiii))")));
}

std::string AtSpiCalls::documentAttribute(const AtSpiReference& object, const char* attribute) {
    return stringOf(item(call(object, "org.a11y.atspi.Document", "GetAttributeValue",
                              g_variant_new("(s)", attribute), "(s)")));
}

AtSpiReference AtSpiCalls::embedded(const AtSpiReference& object, std::int32_t index) {
    const AtSpiReference link = referenceFrom(
        call(object, "org.a11y.atspi.Hypertext", "GetLink", g_variant_new("(i)", index), "((so))"));
    return referenceFrom(
        call(link, "org.a11y.atspi.Hyperlink", "GetObject", g_variant_new("(i)", 0), "((so))"));
}

} // namespace tavik
