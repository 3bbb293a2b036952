#pragma once

#include "Environment/AppEnvironment.h"
#include "UI/Widgets/ActionButton.h"
#include "UI/Widgets/CheckBox.h"
#include "UI/Widgets/Theme.h"

#include <QLabel>
#include <QTimeEdit>
#include <QTimer>
#include <QWidget>
#include <memory>
#include <vector>

namespace tavik {

/// The settings of the daily reminder: whether and when it comes, whether this desktop can show
/// it, and one to try. For the main thread.
class ReminderSettings final : public QWidget {
public:
    /// The environment must outlive the widget.
    ReminderSettings(AppEnvironment& env, const Theme& theme);

    void setTheme(const Theme& theme);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void followSettings();
    QLayout* makeTimeRow();
    QLayout* makeTestRow(const Theme& theme);
    void takeTime();
    void refresh();
    void askForStatus();
    void showStatus(bool isAuthorized);
    QString nextReminderText() const;

    AppEnvironment& env;
    CheckBox* isEnabledBox = nullptr;
    QTimeEdit* timeField = nullptr;
    QLabel* nextText = nullptr;
    QLabel* statusText = nullptr;
    QTimer refreshTimer;
    QTimer timeTimer;
    std::vector<Subscription> subscriptions;
    /// Gone when no answer may come any more.
    std::shared_ptr<void> self = std::make_shared<char>();
};

} // namespace tavik
