#include "UI/Settings/ReminderSettings.h"

#include "UI/Widgets/Fonts.h"
#include "UI/Widgets/Labels.h"
#include "UI/Widgets/TextField.h"

#include <QHBoxLayout>
#include <QVBoxLayout>
#include <chrono>

namespace tavik {
namespace {

constexpr int contentWidth = 400;
constexpr int spacing = 12;
constexpr std::chrono::milliseconds timePatience{400};

} // namespace

ReminderSettings::ReminderSettings(AppEnvironment& env, const Theme& theme) : env(env) {
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing);
    layout->addWidget(textLabel(QStringLiteral("每日提醒"), FontSizes::headword - 4,
                                QPalette::WindowText, QFont::DemiBold));
    isEnabledBox = new CheckBox(QStringLiteral("每天提醒我复习(&R)"), theme);
    connect(isEnabledBox, &QCheckBox::toggled, this, [this](bool isOn) {
        this->env.settings().reminderEnabled.set(isOn);
        this->env.refreshCounts();
        if (isOn)
            this->env.reminders().requestAuthorization(
                [this, weak = std::weak_ptr(self)](bool isGranted) {
                    if (!weak.expired()) showStatus(isGranted);
                });
    });
    layout->addWidget(isEnabledBox);
    layout->addLayout(makeTimeRow());
    nextText = textLabel({}, FontSizes::secondary, QPalette::PlaceholderText);
    nextText->setWordWrap(true);
    nextText->setFixedWidth(contentWidth);
    layout->addWidget(nextText);
    layout->addLayout(makeTestRow(theme));
    statusText = textLabel({}, FontSizes::secondary, QPalette::PlaceholderText);
    statusText->setWordWrap(true);
    statusText->setFixedWidth(contentWidth);
    // Whatever it will say, the window keeps its size.
    statusText->setMinimumHeight(2 * statusText->fontMetrics().lineSpacing());
    statusText->setAlignment(Qt::AlignTop);
    layout->addWidget(statusText);
    setTheme(theme);
    followSettings();
    refresh();
}

void ReminderSettings::followSettings() {
    refreshTimer.setSingleShot(true);
    connect(&refreshTimer, &QTimer::timeout, this, [this] { refresh(); });
    AppSettings& settings = env.settings();
    subscriptions.push_back(
        settings.reminderEnabled.observe([this](bool) { refreshTimer.start(0); }));
    for (const auto* const value : {&settings.reminderHour, &settings.reminderMinute})
        subscriptions.push_back(value->observe([this](int) { refreshTimer.start(0); }));
    subscriptions.push_back(
        settings.remindedUntil.observe([this](double) { refreshTimer.start(0); }));
    for (const auto* const value : {&env.dueNow(), &env.totalWords()})
        subscriptions.push_back(value->observe([this](std::int64_t) { refreshTimer.start(0); }));
}

QLayout* ReminderSettings::makeTimeRow() {
    timeField = new QTimeEdit;
    timeField->setFont(uiFont(FontSizes::body));
    timeField->setDisplayFormat(QStringLiteral("HH:mm"));
    timeField->setWrapping(true);
    timeField->setAccessibleName(QStringLiteral("提醒时间"));
    timeField->setButtonSymbols(QAbstractSpinBox::NoButtons);
    timeField->setToolTip(QStringLiteral("直接输入，或用上下键调整"));
    timeTimer.setSingleShot(true);
    connect(&timeTimer, &QTimer::timeout, this, [this] { takeTime(); });
    connect(timeField, &QTimeEdit::timeChanged, this, [this] { timeTimer.start(timePatience); });
    connect(timeField, &QTimeEdit::editingFinished, this, [this] { takeTime(); });
    auto* const label = textLabel(QStringLiteral("提醒时间(&T)"), FontSizes::body);
    label->setBuddy(timeField);
    auto* const row = new QHBoxLayout;
    row->setSpacing(spacing);
    row->addWidget(label);
    row->addWidget(timeField);
    row->addStretch(1);
    return row;
}

QLayout* ReminderSettings::makeTestRow(const Theme& theme) {
    auto* const testButton = new ActionButton(ActionButton::Style::bordered, theme);
    testButton->show("", QStringLiteral("发送测试通知"));
    connect(testButton, &QAbstractButton::clicked, this, [this] {
        env.reminders().sendTestNotification();
        askForStatus();
    });
    auto* const row = new QHBoxLayout;
    row->addWidget(testButton);
    row->addStretch(1);
    return row;
}

/// What the field says once the user rests, not at each step on the way.
void ReminderSettings::takeTime() {
    timeTimer.stop();
    AppSettings& settings = env.settings();
    const QTime time = timeField->time();
    if (time == QTime(settings.reminderHour.value(), settings.reminderMinute.value())) return;
    settings.reminderHour.set(time.hour());
    settings.reminderMinute.set(time.minute());
    env.refreshCounts();
}

void ReminderSettings::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    takeTime();
}

void ReminderSettings::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    askForStatus();
}

void ReminderSettings::askForStatus() {
    env.reminders().authorizationStatus(
        [this, weak = std::weak_ptr(self)](Notifier::AuthorizationStatus status) {
            if (!weak.expired()) showStatus(status == Notifier::AuthorizationStatus::authorized);
        });
}

void ReminderSettings::showStatus(bool isAuthorized) {
    statusText->setText(isAuthorized ? QStringLiteral(
                            "通知由桌面显示。没有看到时，请看看桌面的通知设置和勿扰模式。")
                                     : QStringLiteral("这个桌面没有通知服务，提醒显示不出来。"
                                                      "请安装一个，例如 xfce4-notifyd 或 dunst。"));
    statusText->setForegroundRole(isAuthorized ? QPalette::PlaceholderText : QPalette::WindowText);
}

void ReminderSettings::setTheme(const Theme& theme) {
    setThemeOfButtons(*this, theme);
    setThemeOfField(*timeField, theme);
}

void ReminderSettings::refresh() {
    const AppSettings& settings = env.settings();
    const QSignalBlocker isNotChosen(isEnabledBox);
    const QSignalBlocker isNotSet(timeField);
    isEnabledBox->setChecked(settings.reminderEnabled.value());
    // The user may be on the way to another time.
    if (!timeTimer.isActive())
        timeField->setTime(QTime(settings.reminderHour.value(), settings.reminderMinute.value()));
    timeField->setEnabled(settings.reminderEnabled.value());
    nextText->setText(nextReminderText());
}

QString ReminderSettings::nextReminderText() const {
    if (!env.settings().reminderEnabled.value())
        return QStringLiteral("不再提醒；托盘图标上仍然看得到待复习的数目。");
    if (!env.isBookReadable()) return QStringLiteral("现在读不到生词本。");
    const auto& plan = env.reminders().lastPlan();
    if (!plan) return QStringLiteral("到时候没有要复习的词，就不打扰你。");
    return QStringLiteral("下一次：%1，%2 个生词。Tavik 没有运行时错过的，启动后补上。")
        .arg(QString::fromStdString(env.calendar().text(plan->fireDate)))
        .arg(plan->dueCount);
}

} // namespace tavik
