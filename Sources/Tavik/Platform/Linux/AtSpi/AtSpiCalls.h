#pragma once

#include "Base/ScreenGeometry.h"
#include "Platform/Linux/AtSpi/AtSpiConnection.h"
#include "Platform/Linux/AtSpi/AtSpiConstants.h"

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace tavik {

/// What another program calls an object of its own.
struct AtSpiReference {
    std::string bus;
    std::string path;

    bool isNull() const;

    bool operator==(const AtSpiReference&) const = default;

    bool operator<(const AtSpiReference& other) const {
        return std::tie(bus, path) < std::tie(other.bus, other.path);
    }
};

/// A range in an application's own counting, neither end checked.
using AtSpiRange = std::pair<std::int32_t, std::int32_t>;

/// What an object says of itself.
class AtSpiStates {
public:
    AtSpiStates() = default;

    explicit AtSpiStates(std::uint64_t bits) : bits(bits) {}

    bool contains(atspi::State state) const { return (bits >> state & 1U) != 0; }

private:
    std::uint64_t bits = 0;
};

/// The calls of one session, each of which waits for its answer.
///
/// Where an object has no such thing, or answers what makes no sense, nothing comes back. Once the
/// session is over all throw `AccessibilityFailure`: at the first answer that does not come in
/// time, at the deadline, and when the bus is lost.
class AtSpiCalls {
public:
    AtSpiCalls(std::shared_ptr<GDBusConnection> connection, AtSpiConnection::Deadline deadline);

    void setTimeout(std::chrono::milliseconds limit) { timeout = limit; }

    /// Whether an answer did not come in time.
    bool hasTimedOut() const { return isTimeUp; }

    /// Waits, but not beyond the deadline.
    void pause(std::chrono::milliseconds time);

    /// While it lives, an answer that does not come within `limit` is none, and ends nothing.
    class Glance {
    public:
        Glance(AtSpiCalls& calls, std::chrono::milliseconds limit);
        ~Glance();
        Glance(const Glance&) = delete;
        Glance& operator=(const Glance&) = delete;

    private:
        AtSpiCalls& calls;
        std::chrono::milliseconds usual;
    };

    /// The parent of all applications.
    static AtSpiReference desktop();
    std::vector<AtSpiReference> applications();
    std::optional<std::int64_t> processIdentifier(const std::string& bus);
    std::string toolkitName(const AtSpiReference& application);

    std::optional<std::uint32_t> role(const AtSpiReference& object);
    AtSpiStates states(const AtSpiReference& object);
    std::string name(const AtSpiReference& object);
    AtSpiReference parent(const AtSpiReference& object);
    /// The first children, at most `limit`; some may be null.
    std::vector<AtSpiReference> children(const AtSpiReference& object, std::size_t limit);
    AtSpiReference child(const AtSpiReference& object, std::int32_t index);
    std::map<std::string, std::string> attributes(const AtSpiReference& object);
    /// The first object below this one that is focused.
    AtSpiReference focusedBelow(const AtSpiReference& object);

    std::optional<std::int32_t> characterCount(const AtSpiReference& object);
    std::optional<std::int32_t> caretOffset(const AtSpiReference& object);
    /// Valid UTF-8.
    std::optional<std::string> text(const AtSpiReference& object, std::int32_t start,
                                    std::int32_t end);
    std::optional<std::int32_t> selectionCount(const AtSpiReference& object);
    std::optional<AtSpiRange> selection(const AtSpiReference& object);
    std::optional<ScreenRect> rangeExtents(const AtSpiReference& object, AtSpiRange range);
    std::optional<ScreenRect> characterExtents(const AtSpiReference& object, std::int32_t offset);
    /// The character that stands at a point.
    std::optional<std::int32_t> offsetAt(const AtSpiReference& object, double x, double y);
    std::optional<ScreenRect> extents(const AtSpiReference& object);

    std::string documentAttribute(const AtSpiReference& object, const char* attribute);
    /// The object that stands in a text for its embedded object number `index`.
    AtSpiReference embedded(const AtSpiReference& object, std::int32_t index);

private:
    VariantHandle call(const AtSpiReference& object, const char* interface, const char* method,
                       GVariant* arguments, const char* answerType);
    VariantHandle property(const AtSpiReference& object, const char* interface, const char* name,
                           const char* type);
    [[noreturn]] void endLate(const char* reason);
    [[noreturn]] void end(const char* reason);

    std::shared_ptr<GDBusConnection> connection;
    AtSpiConnection::Deadline deadline;
    std::chrono::milliseconds timeout{500};
    bool isGlancing = false;
    bool isOver = false;
    bool isTimeUp = false;
};

} // namespace tavik
