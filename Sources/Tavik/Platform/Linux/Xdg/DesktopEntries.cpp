#include "Platform/Linux/Xdg/DesktopEntries.h"

#include <gio/gdesktopappinfo.h>

#include <array>
#include <memory>

namespace tavik {
namespace {

constexpr std::size_t mostKnown = 64;

struct Unref {
    void operator()(gpointer object) const { g_object_unref(object); }
};

struct Free {
    void operator()(gpointer memory) const { g_free(memory); }
};

using Entry = std::unique_ptr<GDesktopAppInfo, Unref>;

struct FreeEntries {
    void operator()(GList* entries) const { g_list_free_full(entries, g_object_unref); }
};

std::string lowercased(const std::string& text) {
    const std::unique_ptr<char, Free> lower(g_ascii_strdown(text.c_str(), -1));
    return lower.get();
}

std::optional<std::string> nameOf(GDesktopAppInfo* entry) {
    const char* name = g_app_info_get_name(G_APP_INFO(entry));
    if (name == nullptr || *name == '\0') return std::nullopt;
    return name;
}

/// The entry of a file. A program calls itself what it likes, also by a path.
std::optional<std::string> nameInFile(const std::string& identifier) {
    if (identifier.empty() || identifier.find('/') != std::string::npos) return std::nullopt;
    const Entry entry(g_desktop_app_info_new((identifier + ".desktop").c_str()));
    return entry ? nameOf(entry.get()) : std::nullopt;
}

std::optional<std::string> nameOfClass(const std::string& windowClass) {
    if (windowClass.empty()) return std::nullopt;
    const std::unique_ptr<GList, FreeEntries> entries(g_app_info_get_all());
    for (const GList* at = entries.get(); at != nullptr; at = at->next) {
        auto* entry = G_DESKTOP_APP_INFO(at->data);
        const char* entryClass = g_desktop_app_info_get_startup_wm_class(entry);
        if (entryClass != nullptr && g_ascii_strcasecmp(entryClass, windowClass.c_str()) == 0)
            return nameOf(entry);
    }
    return std::nullopt;
}

std::optional<std::string> find(const std::string& identifier, const std::string& windowClass) {
    for (const std::string& file : std::array{identifier, lowercased(identifier), windowClass})
        if (auto name = nameInFile(file)) return name;
    return nameOfClass(windowClass);
}

} // namespace

DesktopEntries::DesktopEntries(std::chrono::milliseconds patience) : patience(patience) {}

std::optional<std::string> DesktopEntries::name(const std::string& identifier,
                                                const std::string& windowClass) {
    const Program program(identifier, windowClass);
    {
        const std::lock_guard guard(lock);
        const auto found = known.find(program);
        if (found != known.end()
            && (found->second.name || Clock::now() - found->second.since < patience))
            return found->second.name;
    }
    // Others need not wait for the files.
    auto name = find(identifier, windowClass);
    const std::lock_guard guard(lock);
    if (known.size() >= mostKnown) known.clear();
    known[program] = {name, Clock::now()};
    return name;
}

} // namespace tavik
