#include "Settings/HoverMode.h"

#include "Base/EnumTexts.h"

namespace tavik {
namespace {

constexpr EnumTable<HoverMode, allHoverModes.size()> modes{{
    {HoverMode::off, "off", "关闭"},
    {HoverMode::always, "always", "鼠标停在单词上就查"},
    {HoverMode::withOption, "withOption", "按住 Alt 键时才查"},
}};

} // namespace

std::string_view rawValue(HoverMode mode) {
    return textsOf(modes, mode).rawValue;
}

std::optional<HoverMode> hoverModeFromRawValue(std::string_view text) {
    return caseWithRawValue(modes, text);
}

std::string_view label(HoverMode mode) {
    return textsOf(modes, mode).label;
}

} // namespace tavik
