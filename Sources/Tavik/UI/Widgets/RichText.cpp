#include "UI/Widgets/RichText.h"

namespace tavik {
namespace {

QString escaped(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())).toHtmlEscaped();
}

} // namespace

QString coloredHTML(std::string_view text, const QColor& color) {
    return QStringLiteral("<span style=\"color:%1\">%2</span>").arg(color.name(), escaped(text));
}

QString markedHTML(std::string_view before, std::string_view match, std::string_view after,
                   const Theme& theme) {
    return escaped(before) + QStringLiteral("<b>") + coloredHTML(match, theme.accent)
           + QStringLiteral("</b>") + escaped(after);
}

} // namespace tavik
