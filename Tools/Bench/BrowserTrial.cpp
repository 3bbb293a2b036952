#include "BrowserTrial.h"

#include "Holdings.h"
#include "UI/Browser/VocabularyView.h"

#include <QAbstractItemModel>
#include <QCoreApplication>
#include <QPixmapCache>
#include <QStyle>
#include <QStyleOptionSlider>
#include <array>
#include <chrono>
#include <ctime>
#include <stdexcept>

namespace tavik {
namespace {

constexpr const char* windowName = "vocabulary";
/// A rare word and two that are in many sentences.
constexpr std::array words{"ubiquitous", "mountain", "because"};
constexpr int placesOfBar = 10;

double between(PaintClock::Moment begin, PaintClock::Moment end) {
    return std::chrono::duration<double, std::milli>(end - begin).count();
}

/// What this thread has had of the processors, in milliseconds: other programs that are busy at the
/// same time do not count.
double processorTime() {
    timespec spent{};
    static_cast<void>(clock_gettime(CLOCK_THREAD_CPUTIME_ID, &spent));
    return static_cast<double>(spent.tv_sec) * 1e3 + static_cast<double>(spent.tv_nsec) / 1e6;
}

nlohmann::json holdings() {
    // Up to ten megabytes, which Qt lets go by itself.
    QPixmapCache::clear();
    auto* const connection =
        qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
    const Holdings held = presentHoldings(connection);
    return {{"resident", held.residentKilobytes},
            {"heap", held.heapKilobytes},
            {"descriptors", held.descriptors},
            {"threads", held.threads},
            {"windows", held.windows},
            {"resources", held.resources}};
}

/// The place of the bar's handle, in pixels from the bar's top left.
QRect handleOf(const QScrollBar& bar) {
    QStyleOptionSlider option;
    option.initFrom(&bar);
    option.subControls = QStyle::SC_None;
    option.orientation = Qt::Vertical;
    option.minimum = bar.minimum();
    option.maximum = bar.maximum();
    option.sliderPosition = bar.sliderPosition();
    option.sliderValue = bar.value();
    option.singleStep = bar.singleStep();
    option.pageStep = bar.pageStep();
    return bar.style()->subControlRect(QStyle::CC_ScrollBar, &option, QStyle::SC_ScrollBarSlider,
                                       &bar);
}

} // namespace

BrowserTrial::BrowserTrial(PaintClock& clock, AppEnvironment& env, WindowSystem& windowSystem)
    : clock(clock), env(env), windows(windowSystem) {
    clock.onPaint([this](const QObject& painting) {
        if (&painting != field || field->text() == seenText) return;
        seenText = field->text();
        seenAt = PaintClock::Clock::now();
    });
}

nlohmann::json BrowserTrial::open(std::size_t times) {
    nlohmann::json report{{"before", holdings()}};
    for (std::size_t time = 0; time < times; ++time) {
        if (time > 0) close();
        const Moment begun = PaintClock::Clock::now();
        present();
        const Moment drawn = clock.settle([this] { return isDrawn(); });
        // No loop runs in which a window would go away by itself.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        report["times"].push_back(between(begun, drawn));
        report["after"].push_back(holdings());
    }
    clock.settle([this] { return table->isActiveWindow() && field->hasFocus(); });
    return report;
}

void BrowserTrial::present() {
    const WindowSet::Style style{QStringLiteral("Tavik · 生词本"), true, true};
    const QWidget& window = windows.present(windowName, style, [this] {
        model = std::make_shared<VocabularyModel>(env);
        auto view = std::make_unique<VocabularyView>(
            model, WordActions{[](const std::string&) {}, [](const std::string&) {}, [] {}});
        clock.watch(view.get());
        return view;
    });
    field = window.findChild<QLineEdit*>();
    table = window.findChild<QTableView*>();
    bar = table->verticalScrollBar();
    seenText.clear();
    searchChanges = model->search().observe([this](const std::string&) {
        ++searches;
        isSeenBeforeSearch = isSeenBeforeSearch && seenText == field->text();
    });
    QObject::connect(table->model(), &QAbstractItemModel::modelReset, table, [this] {
        areRowsNew = true;
        clock.forget(*table->viewport());
    });
}

void BrowserTrial::close() {
    clock.watch(nullptr);
    windows.window(windowName)->close();
    searchChanges = {};
    model.reset();
    clock.settle([] { return true; });
}

bool BrowserTrial::isDrawn() const {
    return clock.firstDrawn(*table->viewport()).has_value();
}

nlohmann::json BrowserTrial::type(std::size_t rounds) {
    auto report = nlohmann::json::array();
    for (std::size_t round = 0; round < rounds; ++round) {
        const bool isItemsFirst = round % 2 == 0;
        for (const std::string word : words) {
            // Beside a chosen word with its sentences there is more to show.
            model->select(isItemsFirst ? std::nullopt
                                       : std::optional(model->items().value()[0].word.id));
            for (std::size_t length = 1; length <= word.size(); ++length)
                report.push_back(typeKey(static_cast<xcb_keysym_t>(word[length - 1]),
                                         word.substr(0, length), isItemsFirst));
            for (std::size_t length = word.size(); length-- > 0;)
                report.push_back(
                    typeKey(UserInput::backspace, word.substr(0, length), isItemsFirst));
        }
    }
    return report;
}

nlohmann::json BrowserTrial::typeKey(xcb_keysym_t key, const std::string& expected,
                                     bool isItemsFirst) {
    clock.settle([] { return true; });
    ItemsTime items;
    if (isItemsFirst) items = itemsTime(expected);
    startSearch();
    const double before = processorTime();
    const Moment begun = input.tap(key);
    const Moment settled = clock.settle([this] { return areRowsNew && isDrawn(); });
    const double work = processorTime() - before;
    const Moment rows = clock.firstDrawn(*table->viewport()).value();
    if (field->text().toStdString() != expected || model->search().value() != expected)
        throw std::runtime_error("a key is lost");
    if (!isItemsFirst) items = itemsTime(expected);
    return {{"text", expected},
            {"found", model->items().value().size()},
            {"character", between(begun, seenAt.value())},
            {"rows", between(begun, rows)},
            {"settled", between(begun, settled)},
            {"items", items.elapsed},
            {"work", work},
            {"itemsWork", items.work},
            {"searches", searches},
            {"seenFirst", isSeenBeforeSearch}};
}

void BrowserTrial::startSearch() {
    areRowsNew = false;
    seenAt.reset();
    searches = 0;
    isSeenBeforeSearch = true;
    clock.restart();
}

BrowserTrial::ItemsTime BrowserTrial::itemsTime(const std::string& text) const {
    const Moment begun = PaintClock::Clock::now();
    const double before = processorTime();
    const auto items = env.store().items(text);
    return {between(begun, PaintClock::Clock::now()), processorTime() - before};
}

nlohmann::json BrowserTrial::typeAhead(std::size_t rounds) {
    auto report = nlohmann::json::array();
    model->select(std::nullopt);
    for (std::size_t round = 0; round < rounds; ++round)
        for (const std::string word : words) {
            report.push_back(typeKeysAhead({word.begin(), word.end()}, word));
            report.push_back(
                typeKeysAhead(std::vector<xcb_keysym_t>(word.size(), UserInput::backspace), ""));
        }
    return report;
}

nlohmann::json BrowserTrial::typeKeysAhead(const std::vector<xcb_keysym_t>& keys,
                                           const std::string& expected) {
    clock.settle([] { return true; });
    const ItemsTime items = itemsTime(expected);
    startSearch();
    input.typeAhead(keys);
    const double before = processorTime();
    const Moment begun = PaintClock::Clock::now();
    const Moment settled = clock.settle([this, &expected] {
        return areRowsNew && isDrawn() && field->text().toStdString() == expected;
    });
    return {{"text", expected},
            {"keys", keys.size()},
            {"searches", searches},
            {"seenFirst", isSeenBeforeSearch},
            {"settled", between(begun, settled)},
            {"items", items.elapsed},
            {"work", processorTime() - before},
            {"itemsWork", items.work}};
}

nlohmann::json BrowserTrial::scroll(std::size_t rounds) {
    nlohmann::json report;
    const auto tell = [&](const char* name, const std::vector<ScrollTime>& times) {
        for (const ScrollTime& time : times) {
            report[name]["rows"].push_back(time.rows);
            report[name]["settled"].push_back(time.settled);
        }
    };
    tell("wheel", turnWheel());
    tell("page", turnPages());
    tell("bar", dragBar(rounds));
    return report;
}

std::vector<BrowserTrial::ScrollTime> BrowserTrial::turnWheel() {
    bar->setValue(0);
    input.movePointer(table->viewport()->mapToGlobal(table->viewport()->rect().center()));
    clock.settle([] { return true; });
    std::vector<ScrollTime> times;
    while (bar->value() < bar->maximum())
        times.push_back(scrollBy([this] { return input.turnWheel(); }));
    return times;
}

std::vector<BrowserTrial::ScrollTime> BrowserTrial::turnPages() {
    bar->setValue(0);
    input.tap(UserInput::down);
    clock.settle([this] { return table->hasFocus(); });
    const int last = table->model()->rowCount() - 1;
    std::vector<ScrollTime> times;
    while (table->currentIndex().row() < last)
        times.push_back(scrollBy([this] { return input.tap(UserInput::pageDown); }));
    return times;
}

std::vector<BrowserTrial::ScrollTime> BrowserTrial::dragBar(std::size_t rounds) {
    std::vector<ScrollTime> times;
    for (std::size_t round = 0; round < rounds; ++round) {
        bar->setValue(0);
        clock.settle([] { return true; });
        const QPoint grip = handleOf(*bar).center();
        input.movePointer(bar->mapToGlobal(grip));
        input.holdButton();
        clock.settle([this] { return bar->isSliderDown(); });
        const int way = bar->height() - 2 * grip.y();
        for (int place = 1; place <= placesOfBar; ++place) {
            const QPoint to = bar->mapToGlobal(grip + QPoint(0, way * place / placesOfBar));
            times.push_back(scrollBy([this, to] { return input.movePointer(to); }));
        }
        input.releaseButton();
        clock.settle([this] { return !bar->isSliderDown(); });
    }
    return times;
}

BrowserTrial::ScrollTime BrowserTrial::scrollBy(const std::function<Moment()>& event) {
    clock.settle([] { return true; });
    const int row = table->currentIndex().row();
    const int place = bar->value();
    clock.restart();
    const Moment begun = event();
    const Moment drawn = clock.settle(
        [&] { return isDrawn() && (bar->value() != place || table->currentIndex().row() != row); });
    return {between(begun, clock.firstDrawn(*table->viewport()).value()), between(begun, drawn)};
}

} // namespace tavik
