#pragma once

#include "UI/Widgets/ActionButton.h"
#include "UI/Widgets/Paragraph.h"
#include "UI/Widgets/Section.h"
#include "Vocabulary/VocabularyRecords.h"

#include <QLabel>
#include <functional>
#include <string>

namespace tavik {

/// A sentence in which a word was met, what the word meant there, and where that was.
class EncounterView final : public Section {
public:
    /// Opens the page at an address.
    using OpenPage = std::function<void(const std::string& url)>;

    /// The theme must outlive the view.
    EncounterView(OpenPage openPage, const Theme& theme);

    /// `hasMeaning` is whether to tell what the word meant there, `date` when that was.
    void show(const Encounter& encounter, const Word& word, bool hasMeaning, const QString& date);
    using Section::show;

    /// Seen at the next `show`.
    void setTheme(const Theme& theme);

private:
    OpenPage openPage;
    const Theme* colors;
    Paragraph* sentence;
    Paragraph* meaning;
    QWidget* line;
    ActionButton* link;
    Paragraph* place;
    QLabel* when;
    std::string url;
};

/// Whether a click may open the address: a page, or a document of this machine.
bool canOpen(const std::string& url);

} // namespace tavik
