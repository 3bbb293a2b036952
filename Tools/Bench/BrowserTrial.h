#pragma once

#include "Environment/AppEnvironment.h"
#include "PaintClock.h"
#include "Shell/WindowSet.h"
#include "UI/Browser/VocabularyModel.h"
#include "UserInput.h"

#include <nlohmann/json.hpp>

#include <QLineEdit>
#include <QScrollBar>
#include <QTableView>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tavik {

/// The window of the vocabulary book under keys and mouse, with a clock at what it paints. For the
/// main thread.
///
/// All times are in milliseconds and end when the server has drawn: "rows" those in the table,
/// "settled" the last of what an event changes. All but the constructor throw `std::runtime_error`
/// when the window does not do what is awaited.
class BrowserTrial {
public:
    using Moment = PaintClock::Moment;

    /// Both must outlive the trial. Throws `std::runtime_error` when the server lets nobody press
    /// keys.
    BrowserTrial(PaintClock& clock, AppEnvironment& env, WindowSystem& windowSystem);
    ~BrowserTrial() = default;
    BrowserTrial(const BrowserTrial&) = delete;
    BrowserTrial& operator=(const BrowserTrial&) = delete;

    /// Opens and closes the window so many times and leaves it open. Tells the times, and what the
    /// process holds before the first and after each opening.
    nlohmann::json open(std::size_t times);

    /// Types words letter by letter and takes them away again. Tells for each key of the character
    /// in the field, of the rows found, of all that follows, and of `store.items` by itself for the
    /// same text, which comes before the key and after it by turns. "work" is what this thread had
    /// of the processors meanwhile.
    nlohmann::json type(std::size_t rounds);

    /// Types words faster than the window reads them. Tells how many searches came of each, whether
    /// the field had shown it before, and the times.
    nlohmann::json typeAhead(std::size_t rounds);

    /// Through all rows and, with the bar, to ten places so many times.
    nlohmann::json scroll(std::size_t rounds);

private:
    struct ItemsTime {
        double elapsed = 0;
        double work = 0;
    };

    struct ScrollTime {
        double rows = 0;
        double settled = 0;
    };

    void present();
    void close();
    bool isDrawn() const;
    void startSearch();
    ItemsTime itemsTime(const std::string& text) const;
    nlohmann::json typeKey(xcb_keysym_t key, const std::string& expected, bool isItemsFirst);
    nlohmann::json typeKeysAhead(const std::vector<xcb_keysym_t>& keys,
                                 const std::string& expected);
    std::vector<ScrollTime> turnWheel();
    std::vector<ScrollTime> turnPages();
    std::vector<ScrollTime> dragBar(std::size_t rounds);
    ScrollTime scrollBy(const std::function<Moment()>& event);

    PaintClock& clock;
    AppEnvironment& env;
    UserInput input;
    WindowSet windows;
    std::shared_ptr<VocabularyModel> model;
    QLineEdit* field = nullptr;
    QTableView* table = nullptr;
    QScrollBar* bar = nullptr;
    /// Since `startSearch`, as all that follows.
    bool areRowsNew = false;
    /// What the field painted last, and when it first did that.
    QString seenText;
    std::optional<Moment> seenAt;
    std::size_t searches = 0;
    bool isSeenBeforeSearch = true;
    Subscription searchChanges;
};

} // namespace tavik
