#pragma once

#include "UI/Widgets/ActionButton.h"
#include "UI/Widgets/Paragraph.h"
#include "Vocabulary/VocabularyRecords.h"

#include <QLabel>
#include <QWidget>
#include <functional>

namespace tavik {

/// A saved word in large letters with its sound, and buttons to hear it and to see clips with it.
class WordHeadline final : public QWidget {
public:
    using Action = std::function<void(const Word& word)>;

    /// The theme must outlive the headline.
    WordHeadline(int pixels, Action speak, Action showVideos, const Theme& theme);

    void show(const Word& word, const Theme& theme);
    using QWidget::show;

private:
    ActionButton* button(const char* drawing, const QString& name, Action action,
                         const Theme& theme);

    Word shown;
    Paragraph* word;
    QLabel* phonetic;
};

} // namespace tavik
