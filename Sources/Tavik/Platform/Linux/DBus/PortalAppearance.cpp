#include "Platform/Linux/DBus/PortalAppearance.h"

#include <optional>

namespace tavik {
namespace {

// The bus gives up starting a program after 25 seconds itself.
constexpr std::chrono::seconds patience{30};

constexpr const char* group = "org.freedesktop.appearance";
constexpr const char* key = "color-scheme";

const BusObject settings{"org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop",
                         "org.freedesktop.portal.Settings"};

/// What a chain of variants holds in the end.
VariantHandle unwrapped(VariantHandle value) {
    while (value && g_variant_is_of_type(value.get(), G_VARIANT_TYPE_VARIANT))
        value.reset(g_variant_get_variant(value.get()));
    return value;
}

/// No value for what is no colour scheme.
std::optional<bool> isDark(VariantHandle value) {
    constexpr guint32 dark = 1;
    const VariantHandle scheme = unwrapped(std::move(value));
    if (!scheme || !g_variant_is_of_type(scheme.get(), G_VARIANT_TYPE_UINT32)) return std::nullopt;
    return g_variant_get_uint32(scheme.get()) == dark;
}

bool isColorScheme(GVariant* change) {
    if (!g_variant_is_of_type(change, G_VARIANT_TYPE("(ssv)"))) return false;
    const VariantHandle name(g_variant_get_child_value(change, 1));
    return textOf(name.get()) == key;
}

} // namespace

/// Follows the portal on the bus thread.
class PortalAppearance::Watch : public std::enable_shared_from_this<Watch> {
public:
    using Report = std::function<void(bool isDark)>;

    Watch(std::shared_ptr<BusConnection> session, Report report)
        : session(std::move(session)), report(std::move(report)) {}

    void begin() {
        changes = session->subscribe(settings, "SettingChanged", group, [this](GVariant* change) {
            if (isColorScheme(change))
                take(isDark(VariantHandle(g_variant_get_child_value(change, 2))));
        });
        ownerChanges = session->watchOwner(settings.name, [this](const std::string& owner) {
            // Asking starts the portal, which is wanted once and not each time that it ends.
            if (owner.empty() && hasAsked)
                question.reset();
            else
                ask();
        });
    }

private:
    void ask() {
        hasAsked = true;
        question = std::make_shared<char>();
        session->call(
            settings, "Read", ownedVariant(g_variant_new("(ss)", group, key)),
            {.answerType = "(v)", .timeout = patience, .activation = BusActivation::allowed},
            [weak = weak_from_this(),
             asked = std::weak_ptr(question)](const VariantHandle& answer) {
                const auto self = weak.lock();
                if (self && !asked.expired()) self->takeAnswer(answer.get());
            });
    }

    /// A portal that knows no such setting answers with an error.
    void takeAnswer(GVariant* answer) {
        take(answer ? isDark(VariantHandle(g_variant_get_child_value(answer, 0))) : false);
    }

    void take(std::optional<bool> isDark) {
        if (isDark && std::exchange(last, *isDark) != *isDark) report(*isDark);
    }

    std::shared_ptr<BusConnection> session;
    Report report;
    bool last = false;
    bool hasAsked = false;
    /// Answers to any earlier question are out of date.
    std::shared_ptr<void> question;
    BusSubscription changes;
    BusSubscription ownerChanges;
};

PortalAppearance::PortalAppearance(const std::shared_ptr<BusConnection>& session, MainQueue& queue)
    : current(std::make_shared<Published<bool>>(false)) {
    auto report = [&queue, weak = std::weak_ptr(current)](bool isDark) {
        queue.post([weak, isDark] {
            if (const auto published = weak.lock()) published->set(isDark);
        });
    };
    watch = makeOn<Watch>(session->thread(), session, std::move(report));
    session->whenReady([weak = std::weak_ptr(watch)](bool) {
        if (const auto self = weak.lock()) self->begin();
    });
}

PortalAppearance::~PortalAppearance() = default;

const Published<bool>& PortalAppearance::prefersDark() const {
    return *current;
}

} // namespace tavik
