#pragma once

#include "UI/Widgets/Theme.h"

#include <QString>
#include <string_view>

namespace tavik {

// What comes from dictionaries, pages and models goes through these functions: it is text, and
// never becomes markup.

/// HTML that shows the text in a colour.
QString coloredHTML(std::string_view text, const QColor& color);

/// HTML of a sentence in which `match` stands out.
QString markedHTML(std::string_view before, std::string_view match, std::string_view after,
                   const Theme& theme);

} // namespace tavik
