#pragma once

#include "Base/Preferences.h"
#include "Learning/Scheduler.h"

#include <array>
#include <memory>
#include <optional>
#include <string_view>

namespace tavik {

/// Which scheduler decides when words come back.
enum class SchedulerKind { fsrs, fixed };

inline constexpr std::array allSchedulerKinds{SchedulerKind::fsrs, SchedulerKind::fixed};

/// The text under which preferences keep the kind.
std::string_view rawValue(SchedulerKind kind);
std::optional<SchedulerKind> schedulerKindFromRawValue(std::string_view text);

/// The kind's name for people.
std::string_view label(SchedulerKind kind);

/// The kind that the user has chosen, else `fsrs`.
SchedulerKind schedulerKind(const Preferences& preferences);

/// The share of words that the user wants to remember when they come back; 0.9 where nothing that
/// can be aimed at is chosen.
double desiredRetention(const Preferences& preferences);

/// The scheduler that the application uses for a kind; `desiredRetention` matters to FSRS only.
std::unique_ptr<Scheduler> makeScheduler(SchedulerKind kind, double desiredRetention);

} // namespace tavik
