#pragma once

#include <string>

namespace tavik::test {

/// Answers a notification with the mouse, as a user of the private desktop does.
///
/// In "notifications-xfce" it is the button with this text that is clicked. Dunst
/// ("notifications-dunst") shows no buttons: there the notification itself, the only one, is
/// clicked with the mouse's middle button. False when no such notification has come to stand on the
/// screen after ten seconds. Throws for any other daemon.
bool clickNotificationButton(const std::string& daemon, const std::string& text);

} // namespace tavik::test
