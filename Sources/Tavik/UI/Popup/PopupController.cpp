#include "UI/Popup/PopupController.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QString>
#include <QTimer>
#include <algorithm>
#include <utility>

namespace tavik {
namespace {

/// Of the visible frame; beyond it the content scrolls.
constexpr double greatestShare = 0.6;

ScreenRect scaled(const ScreenRect& rect, double factor) {
    return {rect.x * factor, rect.y * factor, rect.width * factor, rect.height * factor};
}

} // namespace

PopupController::PopupController(AppEnvironment& env, WindowSystem& windows, Mouse& mouse)
    : env(env), windows(windows), mouse(mouse) {}

PopupController::~PopupController() {
    // Nobody may come any more to do what is left for later.
    const std::unique_ptr<PopupPanel> last(panel.get());
    close();
}

std::optional<ScreenRect> PopupController::frame() const {
    if (!panel) return std::nullopt;
    return turnedOver(scaled(place, screen.scale), primaryEdge);
}

void PopupController::show(const CaptureResult& capture, bool hover) {
    close();
    isForHover = hover;
    model = std::make_shared<PopupModel>(
        env.lookup().lookup(capture.text, capture.sentence, capture.source), text(capture.method));
    later = std::make_unique<QObject>();
    panel = makePanel();
    anchor = capture.anchor;
    layout();
    panel->show();
    panel->raise();
    limitClicks();
    if (!hover) becomeKey();
    followChanges();
    clickMonitor = mouse.observePresses([this](ScreenPoint where) { pressed(where); });
    if (hover) return;
    if (model->result().isWord && env.settings().autoSpeak.value()) speak();
    startExplaining();
}

std::unique_ptr<PopupPanel, PopupController::LaterDeletion> PopupController::makePanel() {
    const Theme& theme = currentTheme(env.prefersDark().value());
    auto view = std::make_unique<PopupView>(model, canExplain(), actions(), theme);
    std::unique_ptr<PopupPanel, LaterDeletion> made(
        std::make_unique<PopupPanel>(std::move(view), windows.hasCompositor(), theme).release());
    made->setAccessibleName(QStringLiteral("Tavik 释义：")
                            + QString::fromStdString(model->title()).simplified());
    made->setOnEscape([this] { close(); });
    made->setOnReturn([this] { save(); });
    return made;
}

PopupActions PopupController::actions() {
    return {.speak = [this] { speak(); },
            .close = [this] { close(); },
            .save = [this] { save(); },
            .showVideos =
                [this] {
                    if (onVideo && model) onVideo(model->title());
                },
            .copyTranslation = [this] { copyTranslation(); }};
}

bool PopupController::canExplain() const {
    return env.settings().llmConfig().isUsable();
}

ScreenRect PopupController::inPoints(const ScreenRect& upwards) const {
    return scaled(upwards, 1 / screen.scale);
}

void PopupController::chooseScreen(const std::vector<Screen>& screens, ScreenPoint point) {
    std::vector<ScreenRect> frames;
    frames.reserve(screens.size());
    for (const Screen& each : screens)
        frames.push_back(turnedOver(each.frame, primaryEdge));
    const auto found = PopupPlacement::screenAt(frames, point);
    screen = found ? screens[*found] : Screen();
    visible = inPoints(turnedOver(screen.visibleFrame, primaryEdge));
}

void PopupController::layout() {
    const std::vector<Screen> screens = windows.screens();
    primaryEdge = screens.empty() ? 0 : screens.front().frame.y + screens.front().frame.height;
    const ScreenPoint pointer = windows.pointer();
    const ScreenPoint mouse{pointer.x, primaryEdge - pointer.y};
    chooseScreen(screens, anchor ? ScreenPoint{anchor->x, anchor->y} : mouse);
    const PopupSize size = panel->view().fit(visible.height * greatestShare);
    place = PopupPlacement::place(size, anchor ? std::optional(inPoints(*anchor)) : std::nullopt,
                                  {mouse.x / screen.scale, mouse.y / screen.scale}, visible);
    placePanel();
}

void PopupController::resizeKeepingTop() {
    const PopupSize size = panel->view().fit(visible.height * greatestShare);
    place = PopupPlacement::refit(place, size, visible);
    placePanel();
}

void PopupController::placePanel() {
    panel->place(*frame(), screen);
}

/// Its shadow is in nobody's way.
void PopupController::limitClicks() {
    if (panel->hasShadow())
        windows.limitClicks(static_cast<std::uint32_t>(panel->winId()), panel->contentPlace());
}

/// Acts after the change, on all changes of one turn at once.
void PopupController::followChanges() {
    const auto isWaiting = std::make_shared<bool>(false);
    const auto change = [this, isWaiting] {
        if (std::exchange(*isWaiting, true)) return;
        QTimer::singleShot(0, later.get(), [this, isWaiting] {
            *isWaiting = false;
            panel->view().refresh();
            resizeKeepingTop();
            limitClicks();
        });
    };
    sizeObserver = model->observeChanges(change);
    appearanceObserver = env.prefersDark().observe([this](bool) {
        QTimer::singleShot(0, later.get(),
                           [this] { panel->setTheme(currentTheme(env.prefersDark().value())); });
    });
}

void PopupController::becomeKey() {
    windows.takeKeyboard(static_cast<std::uint32_t>(panel->winId()));
    panel->setFocus();
}

void PopupController::pressed(ScreenPoint where) {
    if (!panel) return;
    const bool isInside = contains(*frame(), where);
    if (isInside && !panel->isActiveWindow()) becomeKey();
    if (!isInside && closesOnOutsideClick) close();
}

bool PopupController::lookUpOwnSelection() {
    const std::string selected = isKey() ? panel->view().selectedText() : std::string();
    if (selected.empty()) return false;
    show({.text = selected, .source = model->result().source, .anchor = anchor}, false);
    return true;
}

void PopupController::close() {
    explainTask.cancel();
    clickMonitor = Subscription();
    sizeObserver.clear();
    appearanceObserver = Subscription();
    later.reset();
    if (panel) {
        windows.returnKeyboard(static_cast<std::uint32_t>(panel->winId()));
        panel->hide();
        panel->setOnEscape({});
        panel->setOnReturn({});
        panel.reset();
        model.reset();
    }
    isForHover = false;
}

void PopupController::speak() {
    if (model) env.speech().speak(model->title());
}

void PopupController::startExplaining() {
    const LLMConfig config = env.settings().llmConfig();
    if (!config.isUsable()) return;
    model->setExplain(PopupModel::Loading());
    explainTask = env.tasks().start<PopupModel::Explain>(
        [&lookup = std::as_const(env.lookup()), &session = env.httpSession(), config,
         result = model->result()](const std::stop_token& stop) -> PopupModel::Explain {
            try {
                return lookup.explain(result, LLMClient(config, session), stop);
            } catch (const std::exception& error) {
                return PopupModel::Failed{std::string("语境释义失败：") + error.what()};
            }
        },
        [this](PopupModel::Explain state) { model->setExplain(std::move(state)); });
}

void PopupController::save() {
    if (!model) return;
    try {
        env.lookup().save(model->result(), model->contextMeaning(), env.now());
        model->setSaved();
    } catch (const SQLiteDB::Error& error) {
        model->setSaveError(env.failureText(error));
    }
}

void PopupController::copyTranslation() {
    if (!model) return;
    QClipboard* const clipboard = QGuiApplication::clipboard();
    clipboard->clear();
    if (const ContextExplanation* const done = model->explanationDone())
        clipboard->setText(QString::fromStdString(done->translation));
}

} // namespace tavik
