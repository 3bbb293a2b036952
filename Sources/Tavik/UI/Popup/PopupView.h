#pragma once

#include "UI/Popup/PopupModel.h"
#include "UI/Popup/PopupPlacement.h"
#include "UI/Widgets/ActionButton.h"
#include "UI/Widgets/Section.h"
#include "UI/Widgets/Theme.h"

#include <QLabel>
#include <QScrollArea>
#include <QVBoxLayout>
#include <QWidget>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace tavik {

/// What the buttons of a popup do.
struct PopupActions {
    std::function<void()> speak;
    std::function<void()> close;
    std::function<void()> save;
    std::function<void()> showVideos;
    std::function<void()> copyTranslation;
};

/// The content of a popup: the word, its meanings, what it means here, examples, and what can be
/// done with it.
class PopupView final : public QWidget {
public:
    /// How wide it is, in units of layout.
    static constexpr int viewWidth = 408;

    /// `hasModel` is whether a language model would explain the selection. The theme must
    /// outlive the view.
    PopupView(std::shared_ptr<const PopupModel> model, bool hasModel, PopupActions actions,
              const Theme& theme);

    /// Shows what has changed in the model.
    void refresh();

    void setTheme(const Theme& theme);

    /// What the user has selected in the popup itself; empty when nothing.
    std::string selectedText() const;

    /// Scrolls by a key such as the arrow down; whether it is one.
    bool scrollBy(int key);

    /// Lays the content out, scrolled where it would be higher than `maxHeight`, and tells the size
    /// that it takes.
    PopupSize fit(double maxHeight);

private:
    using Color = QColor Theme::*;

    QLabel* label(const QString& text, int pixels, Color color, bool isBold = false);
    QLabel* paragraph(const QString& text, Color color);
    ActionButton* button(ActionButton::Style style, const std::function<void()>& action);
    void addHeader();
    void addMarks();
    void addBody();
    void addDefinitions();
    void addContext();
    void addExamples();
    void addButtons();
    void refreshContext();
    void refreshExamples();
    void refreshButtons();
    QString exampleText(const ExampleSentence& example) const;
    void applyTheme();

    std::shared_ptr<const PopupModel> shown;
    const PopupModel& model;
    bool hasModel;
    PopupActions actions;
    const Theme* colors;
    std::vector<std::pair<QLabel*, Color>> labels;
    std::vector<ActionButton*> buttons;
    QVBoxLayout* layout;
    QScrollArea* scroll;
    QWidget* body;
    QVBoxLayout* bodyLayout;
    Section* context = nullptr;
    QLabel* meaning = nullptr;
    QLabel* translation = nullptr;
    QLabel* examples = nullptr;
    QLabel* saveError = nullptr;
    ActionButton* save = nullptr;
};

} // namespace tavik
