#pragma once

#include <QFont>

namespace tavik {

/// The font of all text, in `pixels`: Latin with the full phonetic alphabet, and Chinese in its
/// simplified forms, never in the Japanese ones.
QFont uiFont(int pixels, QFont::Weight weight = QFont::Normal);

namespace FontSizes {

inline constexpr int headword = 22;
inline constexpr int body = 14;
inline constexpr int secondary = 13;

} // namespace FontSizes

} // namespace tavik
