#pragma once

#include "UI/Review/EncounterView.h"
#include "UI/Review/RatingButton.h"
#include "UI/Review/ReviewModel.h"
#include "UI/Review/WordActions.h"
#include "UI/Review/WordHeadline.h"
#include "UI/Widgets/ActionButton.h"
#include "UI/Widgets/Paragraph.h"
#include "UI/Widgets/ProgressLine.h"
#include "UI/Widgets/ThemeFollower.h"

#include <QLabel>
#include <QScrollArea>
#include <QStackedWidget>
#include <QTimer>
#include <QWidget>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace tavik {

/// The window of daily review: a question, its answer with four ratings, and a summary at the end.
/// The space key shows the answer, 1 to 4 rate it, Escape closes.
class ReviewView final : public QWidget {
public:
    ReviewView(std::shared_ptr<ReviewModel> model, WordActions actions);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QWidget* makeProgress();
    QWidget* makeCard();
    QWidget* makeQuestionButtons();
    QWidget* makeRatings();
    QWidget* makeSummary();
    bool handleKey(int key);
    void refresh();
    void refreshProgress();
    void refreshWord(const VocabItem& item);
    void refreshAnswer(const Word& word);
    void refreshSummary();
    void applyTheme();

    std::shared_ptr<ReviewModel> shown;
    ReviewModel& model;
    WordActions actions;
    ThemeFollower themeFollower;
    const Theme* colors;
    const Theme* appliedTheme = nullptr;
    QLabel* count = nullptr;
    ProgressLine* bar = nullptr;
    QLabel* done = nullptr;
    QStackedWidget* pages;
    QScrollArea* scroll = nullptr;
    WordHeadline* headline = nullptr;
    EncounterView* encounter = nullptr;
    QWidget* answer = nullptr;
    Paragraph* meaning = nullptr;
    Paragraph* definitions = nullptr;
    Paragraph* examples = nullptr;
    QStackedWidget* choices;
    std::map<Rating, RatingButton*> ratings;
    QLabel* seal = nullptr;
    QLabel* summaryTitle = nullptr;
    QLabel* summaryLine = nullptr;
    /// Runs `refresh` in the next turn of the event loop, when all changes can be read.
    QTimer refreshTimer;
    std::int64_t shownIndex = -1;
    std::vector<Subscription> subscriptions;
};

} // namespace tavik
