#pragma once

#include "Capture/CaptureResult.h"
#include "Environment/AppEnvironment.h"
#include "UI/Quick/SuggestionCells.h"
#include "UI/Quick/SuggestionRows.h"
#include "UI/Widgets/ActionButton.h"
#include "UI/Widgets/ThemeFollower.h"

#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QStackedWidget>
#include <QTimer>
#include <QWidget>
#include <functional>
#include <string>
#include <vector>

namespace tavik {

/// What the window of quick lookup does outside itself.
struct QuickActions {
    /// Looks up what was typed.
    std::function<void(const CaptureResult& typed)> onLookup;
    std::function<void()> onClose;
};

/// The content of the window of quick lookup: a word is typed, with suggestions from the
/// dictionary, and looked up. For the main thread.
class QuickView final : public QWidget {
public:
    /// `note` says why the window came, if that is worth a line; `typed` is there from the
    /// beginning, to be typed over. The environment must outlive the view.
    QuickView(AppEnvironment& env, QuickActions actions, const std::string& note = {},
              const std::string& typed = {});
    ~QuickView() override = default;
    QuickView(const QuickView&) = delete;
    QuickView& operator=(const QuickView&) = delete;

    /// What is in the field.
    std::string typed() const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QLayout* makeFieldRow();
    QWidget* makeList();
    void showSuggestions();
    void moveBy(int rows);
    void choose(const QModelIndex& index);
    void lookUp();
    void applyTheme();

    AppEnvironment& env;
    QuickActions actions;
    ThemeFollower themeFollower;
    const Theme* colors;
    SuggestionRows suggestions;
    SuggestionCells cells;
    QLineEdit* field = nullptr;
    ActionButton* button = nullptr;
    QListView* list = nullptr;
    QLabel* emptyText = nullptr;
    QStackedWidget* pages = nullptr;
    /// What the user has typed, to which the rows were suggested.
    QString ownText;
    QTimer suggestionTimer;
};

} // namespace tavik
