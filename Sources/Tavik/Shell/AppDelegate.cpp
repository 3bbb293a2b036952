#include "Shell/AppDelegate.h"

#include "HotKey/KeyNames.h"
#include "Lookup/VideoLinks.h"
#include "Shell/BookAlert.h"
#include "Shell/StatusTexts.h"
#include "UI/Browser/VocabularyView.h"
#include "UI/Quick/QuickView.h"
#include "UI/Review/ReviewView.h"
#include "UI/Settings/SettingsView.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QPushButton>
#include <QUrl>
#include <chrono>
#include <utility>

namespace tavik {
namespace {

/// For the menu to close, and for the application in front to have the keyboard again.
constexpr std::chrono::milliseconds menuDelay{250};
/// For the application in front to know that it has the keyboard again.
constexpr std::chrono::milliseconds focusDelay{80};
/// Until a refusal is told of, as it may be over soon, and no answer at all counts as one.
constexpr std::chrono::seconds refusalPatience{5};
constexpr std::chrono::minutes answerPatience{2};
constexpr const char* quickWindow = "quick";
constexpr const char* reviewWindow = "review";
constexpr const char* settingsWindow = "settings";
constexpr const char* vocabularyWindow = "vocab";

} // namespace

AppDelegate::AppDelegate(AppSettings& settings, ShellPorts ports)
    : settings(settings), ports(std::move(ports)), hotKey(this->ports.hotKeyRegistrar),
      windows(this->ports.windowSystem) {}

AppDelegate::~AppDelegate() {
    ports.wakeSignal.setOnWake({});
    ports.singleInstance.setOnShow({});
}

bool AppDelegate::openEnvironment(const std::filesystem::path& dataDirectory,
                                  const std::optional<std::filesystem::path>& dictionaryPath) {
    // Until there is more to show, that is what keeps the program from going on, if anything.
    ports.singleInstance.setOnShow([] { raiseAlert(); });
    env = openedEnvironment(dataDirectory, settings, dictionaryPath, ports.environment);
    return env != nullptr;
}

void AppDelegate::finishLaunching() {
    // The user has agreed to it once; each session begins without.
    if (settings.onboardingDone.value()) ports.environment.accessibilityTrust.enable();
    popup = std::make_unique<PopupController>(*env, ports.windowSystem, ports.mouse);
    popup->setOnVideo(showVideo);
    env->reminders().setOnOpenReview([this] { showReview(); });
    statusItem = std::make_unique<StatusItem>(
        ports.trayHosts, [this] { return menuRows(); }, [this] { showProgram(); });
    hotKeyTimer.setSingleShot(true);
    QObject::connect(&hotKeyTimer, &QTimer::timeout, [this] { tellOfRefusedHotKey(); });
    registerHotKey();
    for (const auto* const value : {&hotKey.isRegistered(), &hotKey.isAsking()})
        subscriptions.push_back(value->observe(
            [this](bool) { QTimer::singleShot(0, &dayTimer, [this] { followHotKey(); }); }));
    subscriptions.push_back(settings.hotKey.observe([this](const HotKeyCombo& combo) {
        if (combo != settings.hotKey.value())
            QTimer::singleShot(0, &dayTimer, [this] { registerHotKey(); });
    }));
    follow(ports.environment.accessibilityTrust.state());
    follow(env->dueNow());
    follow(env->totalWords());
    follow(env->bookTrouble());
    for (const TrayHost* const host : ports.trayHosts)
        follow(host->presence());
    QObject::connect(&dayTimer, &QTimer::timeout, [this] { refresh(); });
    dayTimer.setTimerType(Qt::PreciseTimer);
    dayTimer.start(std::chrono::minutes(1));
    ports.wakeSignal.setOnWake([this] { refresh(); });
    ports.singleInstance.setOnShow([this] { showProgram(); });
}

template<typename T>
void AppDelegate::follow(const Published<T>& value) {
    subscriptions.push_back(value.observe([this, &value](const T& newValue) {
        if (newValue == value.value()) return;
        QTimer::singleShot(0, &dayTimer, [this] { updateStatusItem(); });
    }));
}

void AppDelegate::refresh() {
    env->refreshCounts();
    settings.retry();
    updateStatusItem();
}

std::vector<MenuRow> AppDelegate::menuRows() {
    std::vector<MenuRow> rows;
    if (!isTrusted()) rows.push_back({untrustedRow, 0, false, [this] { showOnboarding(); }});
    rows.push_back({lookupRow(display(settings.hotKey.value()), !isHotKeyRefused()), 0,
                    !isTrusted(), [this] { menuLookupSelection(); }});
    rows.push_back({"输入查词…", 'l', false, [this] { showQuickLookup(); }});
    rows.push_back({reviewRow(env->dueNow().value()), 'r', true, [this] { showReview(); }});
    rows.push_back(
        {vocabularyRow(env->totalWords().value()), 'v', false, [this] { showVocabulary(); }});
    rows.push_back({"设置…", ',', true, [this] { showSettings(); }});
    rows.push_back({"退出 Tavik", 'q', false, [] { QCoreApplication::quit(); }});
    return rows;
}

bool AppDelegate::isTrusted() const {
    return ports.environment.accessibilityTrust.state().value()
           != AccessibilityTrust::State::notTrusted;
}

void AppDelegate::registerHotKey() {
    hotKey.register_(settings.hotKey.value(), [this] { lookUp(); });
    followHotKey();
}

bool AppDelegate::isHotKeyRefused() const {
    return !hotKey.isRegistered().value() && !hotKey.isAsking().value();
}

void AppDelegate::followHotKey() {
    if (hotKey.isRegistered().value())
        hotKeyTimer.stop();
    else
        hotKeyTimer.start(hotKey.isAsking().value() ? std::chrono::milliseconds(answerPatience)
                                                    : std::chrono::milliseconds(refusalPatience));
    updateStatusItem();
}

void AppDelegate::tellOfRefusedHotKey() {
    if (hotKey.isRegistered().value()) return;
    const std::string name = hotKeyName(settings.hotKey.value());
    ports.environment.notifier.notify(
        {.title = "快捷键 " + name + " 用不了", .body = refusedHotKeyNote(name)});
    updateStatusItem();
}

void AppDelegate::lookUp() {
    if (!isTrusted()) return showOnboarding();
    if (popup->lookUpOwnSelection()) return;
    if (!popup->isKey()) return lookupSelection();
    popup->close();
    QTimer::singleShot(focusDelay, &dayTimer, [this] { lookupSelection(); });
}

void AppDelegate::menuLookupSelection() {
    // Where the program's own window has the keyboard, it would be what is read.
    if (programWindow && programWindow->isActiveWindow()) programWindow->hide();
    QTimer::singleShot(menuDelay, &dayTimer, [this] { lookUp(); });
}

void AppDelegate::lookupSelection() {
    // Two at once would get into each other's way on the clipboard.
    if (std::exchange(isCapturing, true)) return;
    const Date start = env->now();
    captureTask = env->tasks().start<Captured>(
        [capture = env->capture()](const std::stop_token&) -> Captured {
            try {
                return capture.capture();
            } catch (const CaptureError& error) {
                return error;
            }
        },
        [this, start](const Captured& captured) {
            isCapturing = false;
            showCaptured(captured, start);
        });
}

void AppDelegate::showCaptured(const Captured& captured, Date start) {
    if (const auto* const result = std::get_if<CaptureResult>(&captured)) {
        env->captureLog().write(*result, start);
        popup->show(*result, false);
        return;
    }
    const auto& error = std::get<CaptureError>(captured);
    env->captureLog().write(error, start);
    showQuickLookup(unreadSelectionNote(error, hotKeyName(settings.hotKey.value())));
}

void AppDelegate::showQuickLookup(const std::string& note) {
    // What was typed into one that is still there is not lost.
    const auto* const former = dynamic_cast<QuickView*>(windows.window(quickWindow));
    const std::string typed = former && former->isVisible() ? former->typed() : "";
    windows.present(
        quickWindow,
        {.title = QStringLiteral("Tavik 查词"), .isRecreated = true, .isFloating = true}, [&] {
            return std::make_unique<QuickView>(
                *env,
                QuickActions{
                    .onLookup = [this](const CaptureResult& result) { lookUpTyped(result); },
                    .onClose = [this] { windows.window(quickWindow)->close(); }},
                note, typed);
        });
}

void AppDelegate::lookUpTyped(const CaptureResult& typed) {
    windows.window(quickWindow)->close();
    QTimer::singleShot(focusDelay, &dayTimer, [this, typed] { popup->show(typed, false); });
}

void AppDelegate::showOnboarding() {
    if (!onboarding) {
        onboarding = std::make_unique<QMessageBox>();
        onboarding->setIcon(QMessageBox::Question);
        onboarding->setWindowTitle(QStringLiteral("欢迎使用 Tavik"));
        onboarding->setText(QStringLiteral("允许 Tavik 读取其他程序里选中的文字吗？"));
        onboarding->setInformativeText(QStringLiteral(
            "Tavik 借助桌面的「辅助功能」读取选中的单词和它所在的句子，从不读密码。"
            "只有配置了大模型，或者打开视频例句时，才会把单词（大模型还有句子）发给对应的网站。\n\n"
            "开启后，已经打开的程序可能要重新启动才能读到。"));
        onboarding->addButton(QStringLiteral("以后再说"), QMessageBox::RejectRole);
        QPushButton* const enable =
            onboarding->addButton(QStringLiteral("开启"), QMessageBox::AcceptRole);
        onboarding->setDefaultButton(enable);
        onboarding->setModal(false);
        QObject::connect(enable, &QPushButton::clicked, [this] {
            ports.environment.accessibilityTrust.enable();
            settings.onboardingDone.set(true);
        });
    }
    onboarding->show();
    onboarding->raise();
    onboarding->activateWindow();
    ports.windowSystem.bringToFront(static_cast<std::uint32_t>(onboarding->winId()));
}

WordActions AppDelegate::wordActions(const std::string& window) {
    return {.onVideo = showVideo,
            .openPage =
                [](const std::string& url) {
                    QDesktopServices::openUrl(QUrl(QString::fromStdString(url)));
                },
            .onClose = [this, window] { windows.window(window)->close(); }};
}

void AppDelegate::showReview() {
    windows.present(reviewWindow, {QStringLiteral("Tavik · 今日复习"), false, true}, [this] {
        return std::make_unique<ReviewView>(std::make_shared<ReviewModel>(*env),
                                            wordActions(reviewWindow));
    });
}

void AppDelegate::showVocabulary() {
    const bool isNew = !windows.isVisible(vocabularyWindow);
    windows.present(vocabularyWindow, {QStringLiteral("Tavik · 生词本"), true, isNew}, [this] {
        return std::make_unique<VocabularyView>(std::make_shared<VocabularyModel>(*env),
                                                wordActions(vocabularyWindow));
    });
}

void AppDelegate::showSettings() {
    windows.present(settingsWindow, {.title = QStringLiteral("Tavik 设置"), .isRecreated = true},
                    [this] {
                        return std::make_unique<SettingsView>(
                            *env, [this] { windows.window(settingsWindow)->close(); });
                    });
}

void AppDelegate::showVideo(const std::string& word) {
    if (const auto address = VideoLinks::url(word, VideoSource::youglish, Accent::us))
        QDesktopServices::openUrl(QUrl(QString::fromStdString(*address)));
}

bool AppDelegate::isOfLate(const BookTrouble& trouble) const {
    return !env->isBookReadable() || ports.environment.now() - trouble.when < std::chrono::hours(1);
}

ProgramState AppDelegate::programState() const {
    ProgramState state;
    state.dueNow = env->dueNow().value();
    state.totalWords = env->totalWords().value();
    state.hasTray = statusItem->isShown();
    state.hasDictionary = env->dictionary() != nullptr;
    state.isBookReadable = env->isBookReadable();
    if (const auto& trouble = env->bookTrouble().value(); trouble && isOfLate(*trouble))
        state.bookTrouble = trouble->what;
    state.settingsTrouble = settings.failure();
    if (isHotKeyRefused() && !hotKeyTimer.isActive())
        state.hotKeyTrouble = refusedHotKeyNote(hotKeyName(settings.hotKey.value()));
    return state;
}

void AppDelegate::updateStatusItem() {
    statusItem->update(env->dueNow().value());
    if (programWindow && programWindow->isVisible())
        programWindow->display(programState(), menuRows());
}

void AppDelegate::showProgram() {
    env->refreshCounts();
    if (!programWindow) programWindow = std::make_unique<ProgramWindow>(env->prefersDark());
    programWindow->display(programState(), menuRows());
    programWindow->present();
    ports.windowSystem.bringToFront(static_cast<std::uint32_t>(programWindow->winId()));
}

} // namespace tavik
