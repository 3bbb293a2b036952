#include "App/Support/FakeAccessibility.h"
#include "App/Support/FakePasteboard.h"
#include "App/Support/Fakes.h"
#include "Platform/Null/MemoryPreferenceStore.h"
#include "Shell/AppDelegate.h"
#include "Shell/StatusIcon.h"
#include "Shell/StatusTexts.h"
#include "Support/Book.h"
#include "Support/TemporaryDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QMessageBox>
#include <QMetaObject>
#include <QPushButton>
#include <filesystem>
#include <fstream>

namespace tavik {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::HasSubstr;

TEST(StatusTexts, theCountStandsInTheIconAndInTheToolTip) {
    EXPECT_EQ(statusBadge(0), "");
    EXPECT_EQ(statusToolTip(0), "Tavik");
    EXPECT_EQ(statusToolTip(3), "Tavik：3 个生词待复习");
    EXPECT_EQ(statusBadge(99), "99");
    EXPECT_EQ(statusBadge(100), "99+");
    const auto image = [](std::int64_t due) { return statusIcon(due).pixmap(22).toImage(); };
    EXPECT_FALSE(image(0).isNull());
    EXPECT_NE(image(0), image(3));
    EXPECT_NE(image(3), image(12));
}

class ShellTest : public testing::Test {
protected:
    bool open() { return delegate.openEnvironment(data, std::nullopt); }

    /// What the visible window of the program says.
    static std::vector<std::string> shownTexts() {
        // What follows a change, and what that brings into view.
        QApplication::processEvents();
        QApplication::processEvents();
        std::vector<std::string> texts;
        for (const QWidget* const window : QApplication::topLevelWidgets())
            if (window->isVisible())
                for (const QLabel* const label : window->findChildren<QLabel*>())
                    if (label->isVisible()) texts.push_back(label->text().toStdString());
        return texts;
    }

    /// Answers the next message box with its button `index` and keeps what the box said.
    void answerNextBox(qsizetype index) {
        const auto answer = [this, index] {
            auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            ASSERT_NE(box, nullptr);
            boxTexts.push_back((box->text() + '|' + box->informativeText()).toStdString());
            box->buttons().at(index)->click();
        };
        QMetaObject::invokeMethod(QApplication::instance(), answer, Qt::QueuedConnection);
    }

    test::TemporaryDirectory directory;
    fs::path data = directory.file("data");
    Date now = test::day(1);
    test::ManualMainQueue queue;
    test::RecordingSpeech speech;
    test::RecordingNotifier notifier;
    test::FakeAccessibility accessibility;
    test::FakeWorkspace workspace;
    test::FakePasteboard pasteboard;
    test::FakeProcesses processes;
    MemoryPreferenceStore preferences;
    test::FakeKeychain keychain;
    test::FakeTrayHost tray;
    test::FakeWakeSignal wakeSignal;
    test::FakeAccessibilityTrust trust;
    test::FakeSingleInstance instance;
    AppSettings settings{preferences, keychain, AppSettings::standardKeychainAccount};
    AppDelegate delegate{settings,
                         {{queue, speech, notifier, accessibility, trust, workspace, pasteboard,
                           processes, [this] { return now; }, directory.file("capture.log")},
                          {&tray},
                          wakeSignal,
                          instance}};
    std::vector<std::string> boxTexts;
};

TEST_F(ShellTest, aLaterStartShowsTheProgramAlsoWithoutATray) {
    ASSERT_TRUE(open());
    delegate.finishLaunching();
    EXPECT_TRUE(shownTexts().empty());
    instance.show();
    EXPECT_THAT(shownTexts(), Contains("生词本还是空的"));
    EXPECT_THAT(shownTexts(), Contains(HasSubstr("没有系统托盘")));
    tray.current.set(TrayHost::Presence::present);
    EXPECT_THAT(shownTexts(), Not(Contains(HasSubstr("没有系统托盘"))));
    SQLiteDB((data / AppEnvironment::bookName).string(), false).execute("DROP TABLE card");
    wakeSignal.wake();
    queue.runAll();
    EXPECT_THAT(shownTexts(), Contains("现在读不到生词本"));
    EXPECT_THAT(shownTexts(), Contains(HasSubstr("restore")));
}

TEST_F(ShellTest, theWindowFollowsTheBookAfterAWake) {
    ASSERT_TRUE(open());
    delegate.finishLaunching();
    delegate.showProgram();
    VocabularyStore elsewhere((data / AppEnvironment::bookName).string());
    test::addWord(elsewhere, "one", std::nullopt, test::day(0));
    wakeSignal.wake();
    EXPECT_THAT(shownTexts(), Contains("生词本里有 1 个生词，1 个待复习"));
}

TEST_F(ShellTest, accessibilityIsSwitchedOnAgainOnlyForWhoAgreedToIt) {
    ASSERT_TRUE(open());
    delegate.finishLaunching();
    EXPECT_EQ(trust.timesEnabled, 0);
    settings.onboardingDone.set(true);
    delegate.finishLaunching();
    EXPECT_EQ(trust.timesEnabled, 1);
}

TEST_F(ShellTest, aBookThatCannotBeOpenedIsToldOfAndEndsTheLaunch) {
    fs::create_directories(data);
    std::ofstream(data / AppEnvironment::bookName) << "this is no database, whatever its name says";
    answerNextBox(0);
    EXPECT_FALSE(open());
    std::ofstream(directory.file("file")) << "x";
    data = directory.file("file/data");
    answerNextBox(0);
    EXPECT_FALSE(open());
    ASSERT_EQ(boxTexts.size(), 2U);
    for (const std::string& text : boxTexts)
        EXPECT_THAT(text, HasSubstr("Tavik 无法打开数据库|"));
    EXPECT_THAT(boxTexts.front(), HasSubstr("SQLite "));
}

TEST_F(ShellTest, anEmptiedBookIsSetAsideOnlyWhenTheUserSaysSo) {
    fs::create_directories(data);
    const fs::path log = data / "tavik.sqlite-wal";
    std::ofstream(log) << "words";
    answerNextBox(1);
    EXPECT_FALSE(open());
    EXPECT_EQ(fs::file_size(log), 5U);
    answerNextBox(0);
    EXPECT_TRUE(open());
    std::size_t kept = 0;
    for (const auto& file : fs::directory_iterator(data))
        if (file.path().string().find(".emptied-") != std::string::npos) kept += file.file_size();
    EXPECT_EQ(kept, 5U);
}

} // namespace
} // namespace tavik
