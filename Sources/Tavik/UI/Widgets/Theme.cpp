#include "UI/Widgets/Theme.h"

#include <QGuiApplication>

namespace tavik {
namespace {

Theme lightTheme() {
    return {.surface = "#ffffff",
            .border = "#d9dee6",
            .plainEdge = "#b4bdca",
            .text = "#1d232b",
            .secondaryText = "#5b6472",
            .accent = "#2460cc",
            .accentFill = "#2a66d6",
            .accentFillHover = "#2158be",
            .onAccent = "#ffffff",
            .partOfSpeech = "#7048c8",
            .section = "#f1f4fa",
            .controlBorder = "#d5dbe5",
            .hover = "#eef1f6",
            .danger = "#b93129",
            .red = {"#fdecea", "#fadbd8", "#a3211a"},
            .orange = {"#fff0da", "#ffe3bd", "#874800"},
            .green = {"#e4f5e8", "#d0edd7", "#1a662c"},
            .blue = {"#e5eefd", "#d3e2fb", "#1d54b8"},
            .isDark = false};
}

Theme darkTheme() {
    return {.surface = "#23272e",
            .border = "#414853",
            .plainEdge = "#596271",
            .text = "#e8ebf0",
            .secondaryText = "#a7b0bd",
            .accent = "#82aeff",
            .accentFill = "#2f68d4",
            .accentFillHover = "#275bbd",
            .onAccent = "#ffffff",
            .partOfSpeech = "#bca4f7",
            .section = "#2c323b",
            .controlBorder = "#48505c",
            .hover = "#343b46",
            .danger = "#ff9a90",
            .red = {"#47282a", "#573034", "#ffb3ab"},
            .orange = {"#44331f", "#544027", "#ffc482"},
            .green = {"#223d2b", "#2a4c36", "#92e2a6"},
            .blue = {"#25365a", "#2d4370", "#a9c7ff"},
            .isDark = true};
}

} // namespace

QPalette Theme::palette() const {
    QPalette palette(text, surface, surface.lighter(110), border, controlBorder, text, text,
                     surface, surface);
    palette.setColor(QPalette::Button, surface);
    palette.setColor(QPalette::Highlight, accentFill);
    palette.setColor(QPalette::HighlightedText, onAccent);
    palette.setColor(QPalette::Link, accent);
    palette.setColor(QPalette::PlaceholderText, secondaryText);
    palette.setColor(QPalette::ToolTipBase, section);
    palette.setColor(QPalette::ToolTipText, text);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, secondaryText);
    return palette;
}

const Theme& theme(bool isDark) {
    static const Theme light = lightTheme();
    static const Theme dark = darkTheme();
    return isDark ? dark : light;
}

bool hasDarkPalette() {
    constexpr int half = 128;
    return QGuiApplication::palette().color(QPalette::Window).lightness() < half;
}

const Theme& currentTheme(bool prefersDark) {
    return theme(prefersDark || hasDarkPalette());
}

} // namespace tavik
