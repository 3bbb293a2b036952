#pragma once

#include "UI/Browser/VocabularyModel.h"
#include "UI/Review/EncounterView.h"
#include "UI/Review/WordActions.h"
#include "UI/Review/WordHeadline.h"
#include "UI/Widgets/ActionButton.h"
#include "UI/Widgets/Paragraph.h"

#include <QLabel>
#include <QScrollArea>
#include <QStackedWidget>
#include <QVBoxLayout>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace tavik {

/// The chosen word of the vocabulary book with all sentences in which it was met.
class WordDetail final : public QStackedWidget {
public:
    /// How many sentences are shown before the user asks for more.
    static constexpr std::size_t encountersAtOnce = 30;

    /// The model and the theme must outlive the view. `deleteWord` deletes the chosen word.
    WordDetail(VocabularyModel& model, WordActions actions, std::function<void()> deleteWord,
               const Theme& theme);

    /// Shows the model's chosen word as it is at this moment.
    void refresh();

    void setTheme(const Theme& theme);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    /// All that the labels depend on.
    struct Shown {
        VocabItem item;
        std::vector<Encounter> encounters;
        std::size_t most = 0;
        std::string due;
        const Theme* colors = nullptr;

        bool operator==(const Shown&) const = default;
    };

    QWidget* makeWord();
    void showWord();
    void showEncounters(const std::vector<Encounter>& encounters, const Word& word);
    void showMore();
    EncounterView* encounterAt(std::size_t place);

    VocabularyModel& model;
    WordActions actions;
    std::function<void()> deleteWord;
    const Theme* colors;
    Shown shown;
    std::size_t most = encountersAtOnce;
    QScrollArea* scroll = nullptr;
    WordHeadline* headline = nullptr;
    Paragraph* gloss = nullptr;
    QLabel* line = nullptr;
    QLabel* heading = nullptr;
    QVBoxLayout* list = nullptr;
    std::vector<EncounterView*> encounterViews;
    ActionButton* more = nullptr;
};

} // namespace tavik
