#include "UI/Settings/SettingsView.h"

#include <QShortcut>
#include <QVBoxLayout>

namespace tavik {
namespace {

constexpr int padding = 24;

} // namespace

SettingsView::SettingsView(AppEnvironment& env, const std::function<void()>& onClose)
    : themeFollower(*this, env.prefersDark(), [this] { applyTheme(); }),
      reminders(new ReminderSettings(env, themeFollower.theme())) {
    setAutoFillBackground(true);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(padding, padding, padding, padding);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->addWidget(reminders);
    auto* const escape = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    connect(escape, &QShortcut::activated, this, onClose);
    applyTheme();
}

void SettingsView::applyTheme() {
    setPalette(themeFollower.theme().palette());
    reminders->setTheme(themeFollower.theme());
}

} // namespace tavik
