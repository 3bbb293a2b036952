#pragma once

#include "Ports/Keychain.h"

#include <chrono>
#include <stop_token>
#include <string>

namespace tavik {

/// The calls to the desktop's service for secrets. Any thread may make them; each waits until it is
/// answered, at most for `limit` and a moment, and fails as soon as `stop` asks for it. Nothing is
/// kept between two calls, so that a service that was restarted or came late is simply there.
/// Without a session bus they fail at once, and none is ever started.

/// The secret of an account, read without asking the user for anything.
Keychain::Answer readSecret(const std::string& account, std::chrono::milliseconds limit,
                            const std::stop_token& stop);

/// Replaces the secret of an account; an empty one is removed. The service may ask the user for a
/// password. Returns whether the secret is now kept as asked.
bool writeSecret(const std::string& secret, const std::string& account,
                 std::chrono::milliseconds limit, const std::stop_token& stop);

} // namespace tavik
