#pragma once

#include "TsFSRS.h"

#include <filesystem>

namespace tavik {

/// Prints what reviews and previews cost, by themselves and beside ts-fsrs (unless `peer` is
/// nullptr) on the same cards. `work` is for scratch files.
void reportSchedulerSpeed(const TsFSRS* peer, const std::filesystem::path& work);

/// Prints what FSRS and ts-fsrs make of the same ratings. Throws a runtime error when they differ
/// by more than ts-fsrs rounds.
void reportAgreement(const TsFSRS& peer);

} // namespace tavik
