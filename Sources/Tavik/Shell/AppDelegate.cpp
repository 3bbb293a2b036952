#include "Shell/AppDelegate.h"

#include "Shell/BookAlert.h"

#include <QCoreApplication>
#include <chrono>
#include <utility>

namespace tavik {

AppDelegate::AppDelegate(AppSettings& settings, ShellPorts ports)
    : settings(settings), ports(std::move(ports)) {}

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
    statusItem = std::make_unique<StatusItem>(ports.trayHosts, menuRows, [this] { showProgram(); });
    updateStatusItem();
    follow(env->dueNow());
    follow(env->totalWords());
    follow(env->bookTrouble());
    for (const TrayHost* const host : ports.trayHosts)
        follow(host->presence());
    QObject::connect(&dayTimer, &QTimer::timeout, [this] { refresh(); });
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
    return {{"退出 Tavik", 'q', true, [] { QCoreApplication::quit(); }}};
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
    return state;
}

void AppDelegate::updateStatusItem() {
    statusItem->update(env->dueNow().value());
    if (programWindow && programWindow->isVisible())
        programWindow->display(programState(), menuRows());
}

void AppDelegate::showProgram() {
    env->refreshCounts();
    if (!programWindow) programWindow = std::make_unique<ProgramWindow>();
    programWindow->display(programState(), menuRows());
    programWindow->present();
}

} // namespace tavik
