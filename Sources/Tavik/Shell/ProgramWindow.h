#pragma once

#include "Shell/MenuRow.h"
#include "Shell/ProgramNotes.h"
#include "UI/Widgets/ThemeFollower.h"

#include <QWidget>
#include <string>
#include <vector>

class QLabel;
class QVBoxLayout;

namespace tavik {

/// What a second start of the program shows: how it stands, and the rows of its menu, also on a
/// desktop without a tray. Closing it leaves the program running.
class ProgramWindow final : public QWidget {
public:
    /// The value must outlive the window.
    explicit ProgramWindow(const Published<bool>& prefersDark);

    /// Shows the state and the rows anew.
    void display(const ProgramState& state, const std::vector<MenuRow>& rows);

    /// Brings the window to the front, with the keyboard.
    void present();

private:
    void showNotes(const std::vector<std::string>& texts);
    void showRows(const std::vector<MenuRow>& rows);

    ThemeFollower themeFollower;
    QLabel* summary;
    QVBoxLayout* notes;
    QVBoxLayout* buttons;
    std::vector<std::string> shownNotes;
    std::vector<MenuRow> shownRows;
};

} // namespace tavik
