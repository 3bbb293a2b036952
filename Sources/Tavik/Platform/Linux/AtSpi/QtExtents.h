#pragma once

#include "Platform/Linux/AtSpi/AtSpiCalls.h"

namespace tavik {

/// Where a stretch of a text stands, for texts of Qt, whose own answer errs: it counts the
/// character behind the stretch, too; single lines are said to be in the corner of their field; and
/// in some widgets all lines are said to be at the place of the first. Nothing where it is not to
/// be known.
std::optional<ScreenRect> qtRangeExtents(AtSpiCalls& calls, const AtSpiReference& object,
                                         AtSpiRange range);

} // namespace tavik
