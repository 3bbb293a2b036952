#include "Learning/SchedulerKind.h"

#include "Base/EnumTexts.h"
#include "Learning/FSRSScheduler.h"
#include "Learning/FixedIntervalScheduler.h"

namespace tavik {
namespace {

constexpr EnumTable<SchedulerKind, allSchedulerKinds.size()> kinds{{
    {SchedulerKind::fsrs, "fsrs", "记忆曲线（FSRS）"},
    {SchedulerKind::fixed, "fixed", "固定间隔"},
}};

} // namespace

std::string_view rawValue(SchedulerKind kind) {
    return textsOf(kinds, kind).rawValue;
}

std::optional<SchedulerKind> schedulerKindFromRawValue(std::string_view text) {
    return caseWithRawValue(kinds, text);
}

std::string_view label(SchedulerKind kind) {
    return textsOf(kinds, kind).label;
}

SchedulerKind schedulerKind(const Preferences& preferences) {
    const auto chosen = preferences.text(PreferenceKeys::schedulerKind);
    return schedulerKindFromRawValue(chosen.value_or("")).value_or(SchedulerKind::fsrs);
}

double desiredRetention(const Preferences& preferences) {
    constexpr double standard = 0.9;
    const double wanted = preferences.number(PreferenceKeys::desiredRetention).value_or(standard);
    return wanted > 0 && wanted < 1 ? wanted : standard;
}

std::unique_ptr<Scheduler> makeScheduler(SchedulerKind kind, double desiredRetention) {
    if (kind == SchedulerKind::fixed) return std::make_unique<FixedIntervalScheduler>();
    return std::make_unique<FSRSScheduler>(FSRSScheduler::standard(desiredRetention));
}

} // namespace tavik
