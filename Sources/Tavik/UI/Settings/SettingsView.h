#pragma once

#include "Environment/AppEnvironment.h"
#include "UI/Settings/ReminderSettings.h"
#include "UI/Widgets/ThemeFollower.h"

#include <QWidget>
#include <functional>

namespace tavik {

/// The content of the window of settings. Every change takes effect at once. For the main thread.
class SettingsView final : public QWidget {
public:
    /// The environment must outlive the view.
    SettingsView(AppEnvironment& env, const std::function<void()>& onClose);

private:
    void applyTheme();

    ThemeFollower themeFollower;
    ReminderSettings* reminders;
};

} // namespace tavik
