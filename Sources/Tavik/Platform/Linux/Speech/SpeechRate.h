#pragma once

namespace tavik {

/// The rate of speech-dispatcher, -100 to 100, at which speech is `factor` times as fast as at
/// `usual`, the rate that the user has set there.
int speechRate(double factor, int usual);

} // namespace tavik
