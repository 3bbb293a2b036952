#include "Main/Desktop.h"
#include "Platform/Linux/Process/SocketInstance.h"
#include "UI/Browser/VocabularyView.h"
#include "UI/Quick/QuickView.h"
#include "UI/Review/ReviewView.h"
#include "UI/Settings/SettingsView.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QTemporaryDir>
#include <functional>
#include <iostream>
#include <span>
#include <string>
#include <vector>

namespace tavik {
namespace {

struct Meeting {
    const char* word;
    const char* sentence;
    const char* meaning;
    SourceInfo source;
};

const std::string longWord(90, 'w');

std::vector<Meeting> meetings() {
    return {
        {"ubiquitous",
         "Smartphones have become ubiquitous in the classrooms of this country.",
         "这里指智能手机在教室里随处可见。",
         {"Firefox ESR", "firefox-esr", "https://www.example.com/education/phones"}},
        {"abandon",
         "The crew had to abandon the ship before dawn.",
         "弃（船）",
         {"Mousepad", "mousepad", std::nullopt}},
        {"run",
         "He was running late, so he ran for the bus and never looked back.",
         "",
         {"Chromium", "chromium", "https://news.example.org/a/b"}},
        {"run",
         "The company runs three factories.",
         "经营",
         {"Evince", "evince", "file:///home/li/annual-report.pdf"}},
        {"pneumonoultramicroscopicsilicovolcanoconiosis",
         "Few people can spell pneumonoultramicroscopicsilicovolcanoconiosis, and fewer still "
         "have met it outside of a quiz; it was coined in 1935 to be the longest word in the "
         "language, and it has been printed in dictionaries ever since, although no physician "
         "writes it on a certificate.",
         "一种肺病的名称，主要作为最长的单词而出名。",
         {"Firefox ESR", "firefox-esr",
          "https://a-very-long-host-name.with-many-parts.example.com/path"}},
        {longWord.c_str(),
         "https://example.com/"
         "an/address/without/any/blank/in/it/that/goes/on/and/on/and/on/and/on/and/on/and/on.html",
         "",
         {}},
        {"set", "Set the table, would you?", "摆放", {"Tavik", "com.tavik.app", std::nullopt}},
    };
}

void save(AppEnvironment& env, const Meeting& met, Date now) {
    const std::string meaning = met.meaning;
    const auto result = env.lookup().lookup(met.word, met.sentence, met.source);
    static_cast<void>(
        env.lookup().save(result, meaning.empty() ? std::nullopt : std::optional(meaning), now));
}

class Gallery {
public:
    Gallery(std::string folder, AppEnvironment& env) : folder(std::move(folder)), env(env) {}

    void paint() {
        browser("browser-empty", "", false);
        review("review-none", [](ReviewModel&) {});
        settings("settings-nothing-due");
        const Date now = currentDate();
        for (int day = 0; const Meeting& met : meetings())
            save(env, met, now - std::chrono::hours(24 * ++day));
        env.refreshCounts();
        settings("settings");
        review("review-question", [](ReviewModel&) {});
        for (int count = 0; count < 6; ++count)
            review("review-answer-" + std::to_string(count), [count](ReviewModel& model) {
                for (int given = 0; given < count; ++given)
                    model.rate(Rating::good);
                model.reveal();
            });
        quick("quick", "", "");
        quick("quick-unread", "没有读取到选中的文字。请先选中单词，再按 ⌥D（Alt+D），或在此输入。",
              "app");
        quick("quick-phrase", "", "give u");
        quick("quick-no-match", "", "zzyzx");
        browser("browser-no-match", "zzyzx", false);
        browser("browser-chosen", "", true);
        browser("browser-search", "pneu", true);
    }

private:
    void picture(QWidget& view, const std::string& name) {
        view.show();
        for (int turn = 0; turn < 5; ++turn)
            QApplication::processEvents();
        const bool isDark = hasDarkPalette();
        const std::string path = folder + '/' + name + (isDark ? "-dark.png" : "-light.png");
        if (!view.grab().save(QString::fromStdString(path))) std::cerr << "写不了 " << path << '\n';
    }

    void review(const std::string& name, const std::function<void(ReviewModel&)>& prepare) {
        const auto model = std::make_shared<ReviewModel>(env);
        prepare(*model);
        ReviewView view(model, actions);
        picture(view, name);
    }

    void quick(const std::string& name, const std::string& note, const std::string& typed) {
        QuickView view(env, {[](const CaptureResult&) {}, [] {}}, note, typed);
        QKeyEvent down(QEvent::KeyPress, Qt::Key_Down, Qt::NoModifier);
        if (!note.empty()) QApplication::sendEvent(view.findChild<QLineEdit*>(), &down);
        picture(view, name);
    }

    void settings(const std::string& name) {
        SettingsView view(env, [] {});
        picture(view, name);
    }

    void browser(const std::string& name, const std::string& search, bool isChosen) {
        const auto model = std::make_shared<VocabularyModel>(env);
        model->setSearch(search);
        if (isChosen)
            model->select(model->items().value()[isChosen && search.empty() ? 2 : 0].word.id);
        VocabularyView view(model, actions);
        view.resize(view.sizeHint());
        picture(view, name);
    }

    std::string folder;
    AppEnvironment& env;
    WordActions actions{[](const std::string&) {}, [](const std::string&) {}, [] {}};
};

int paintGallery(const std::string& folder) {
    Desktop desktop(true);
    for (const bool isDark : {false, true}) {
        const QTemporaryDir directory;
        const std::string data = directory.path().toStdString();
        SocketInstance instance(data);
        AppSettings settings(desktop.preferences(), desktop.keychain(),
                             AppSettings::standardKeychainAccount);
        AppEnvironment env(data, settings, AppEnvironment::defaultDictionaryPath(),
                           desktop.shellPorts(instance).environment);
        QApplication::setPalette(theme(isDark).palette());
        Gallery(folder, env).paint();
    }
    return EXIT_SUCCESS;
}

} // namespace
} // namespace tavik

/// Paints the windows in all their states into the folder that is named, at QT_SCALE_FACTOR.
int main(int argumentCount, char** arguments) {
    const QApplication application(argumentCount, arguments);
    const std::span all(arguments, static_cast<std::size_t>(argumentCount));
    if (all.size() != 2) {
        std::cerr << "用法：tavik-window-gallery 目录\n";
        return EXIT_FAILURE;
    }
    return tavik::paintGallery(all[1]);
}
