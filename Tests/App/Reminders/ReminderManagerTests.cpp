#include "App/Support/FakeDesktop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace tavik {
namespace {

using testing::ElementsAre;
using namespace std::chrono_literals;

using Status = Notifier::AuthorizationStatus;

/// The reminders of a whole program whose clock does what the test says.
class ReminderManagerTest : public testing::Test, protected test::FakeDesktop {
protected:
    ReminderManagerTest() { now = at(1, 8, 0); }

    Date at(int day, int hour, int minute) const {
        return calendar.date({2026, 3, day}, hour, minute);
    }

    void start() { env.emplace(data, settings, std::nullopt, environmentPorts()); }

    /// Has words due from the beginning on.
    void startWithWords(int count) {
        start();
        for (int word = 0; word < count; ++word)
            test::addWord(env->store(), "word" + std::to_string(word));
        queue.runAll();
    }

    /// The machine runs, and the program looks at its book each minute.
    void live(std::chrono::minutes time) {
        for (auto minute = 0min; minute < time; ++minute) {
            pass(1min);
            env->refreshCounts();
        }
    }

    std::vector<std::string> shown() const {
        std::vector<std::string> bodies;
        for (const Notification& notification : notifier.notifications)
            bodies.push_back(notification.body);
        return bodies;
    }

    std::size_t shownCount() const { return notifier.notifications.size(); }

    std::filesystem::path data = directory.file("data");
    std::optional<AppEnvironment> env;
};

TEST_F(ReminderManagerTest, theReminderComesEachDayAtItsTimeWithWhatIsDueThen) {
    startWithWords(6);
    env->store().delete_(*env->store().wordIDForLemma("word0"));
    test::addWord(env->store(), "later", std::nullopt, at(1, 23, 0));
    queue.runAll();
    const auto& plan = env->reminders().lastPlan();
    ASSERT_TRUE(plan.has_value());
    EXPECT_EQ(plan->fireDate, at(1, 9, 0));
    EXPECT_EQ(plan->body, "今天有 5 个生词该复习了，大约 1 分钟。");
    pass(1h - 1s);
    EXPECT_EQ(shownCount(), 0U);
    pass(1s);
    EXPECT_EQ(notifier.notifications,
              std::vector({Notification{"Tavik 生词复习", "今天有 5 个生词该复习了，大约 1 分钟。",
                                        "tavik.daily-review", "tavik.review", "开始复习", true}}));
    pass(5s);
    EXPECT_EQ(env->reminders().pendingFireDate(), at(2, 9, 0)) << "without anybody's tick";
    live(24h);
    EXPECT_THAT(shown(), ElementsAre("今天有 5 个生词该复习了，大约 1 分钟。",
                                     "今天有 6 个生词该复习了，大约 2 分钟。"));
}

TEST_F(ReminderManagerTest, whereThereIsNothingToAskForNobodyIsDisturbed) {
    start();
    EXPECT_EQ(env->reminders().lastPlan(), std::nullopt);
    test::addWord(env->store(), "later", std::nullopt, at(1, 12, 0));
    test::addWord(env->store(), "early");
    queue.runAll();
    EXPECT_EQ(env->reminders().pendingFireDate(), at(1, 9, 0));
    env->store().delete_(*env->store().wordIDForLemma("early"));
    queue.runAll();
    EXPECT_EQ(env->reminders().pendingFireDate(), std::nullopt);
    settings.reminderEnabled.set(false);
    env->refreshCounts();
    EXPECT_EQ(env->reminders().lastPlan(), std::nullopt);
    EXPECT_EQ(env->dueNow().value(), 0);
    pass(25h + 5s);
    EXPECT_EQ(env->dueNow().value(), 1) << "the counts follow all the same";
    EXPECT_EQ(shownCount(), 0U);
}

TEST_F(ReminderManagerTest, aReviewInAnotherProgramIsKnownWhenTheReminderIsShown) {
    startWithWords(3);
    VocabularyStore terminal((data / AppEnvironment::bookName).string());
    terminal.delete_(*terminal.wordIDForLemma("word0"));
    pass(1h);
    EXPECT_THAT(shown(), ElementsAre("今天有 2 个生词该复习了，大约 1 分钟。"));
    pass(24h - 1s);
    for (const char* const word : {"word1", "word2"})
        terminal.delete_(*terminal.wordIDForLemma(word));
    pass(1h);
    EXPECT_EQ(shownCount(), 1U);
}

TEST_F(ReminderManagerTest, aClockThatIsSetShowsNoFireDateTwiceAndLeavesNoneOut) {
    startWithWords(1);
    live(61min);
    EXPECT_EQ(shownCount(), 1U);
    now = at(1, 8, 30);
    live(60min);
    EXPECT_EQ(shownCount(), 1U) << "09:00 came back";
    now = at(2, 12, 0);
    live(1min);
    EXPECT_EQ(shownCount(), 2U) << "09:00 was jumped over";
    now = at(2, 8, 59);
    live(2min);
    EXPECT_EQ(shownCount(), 2U);
    now = at(2, 8, 0);
    pass(0s);
    now = at(1, 8, 0);
    live(50h);
    EXPECT_EQ(shownCount(), 3U) << "only that of the third day is new";
}

TEST_F(ReminderManagerTest, aMachineThatSleptOverTheTimeRemindsWhenItWakesAndOnlyOnce) {
    startWithWords(1);
    now = at(1, 9, 20);
    EXPECT_EQ(shownCount(), 0U);
    env->refreshCounts();
    EXPECT_EQ(shownCount(), 1U);
    pass(3h);
    now = at(5, 10, 0);
    live(1min);
    EXPECT_EQ(shownCount(), 2U) << "four days are one reminder";
    live(22h + 59min);
    EXPECT_EQ(shownCount(), 3U);
}

TEST_F(ReminderManagerTest, whatWasMissedWhileTheProgramDidNotRunIsMadeUpFor) {
    startWithWords(2);
    env.reset();
    now = at(1, 9, 40);
    start();
    EXPECT_EQ(shownCount(), 1U);
    env.reset();
    start();
    live(60min);
    EXPECT_EQ(shownCount(), 1U);
    settings.reminderEnabled.set(false);
    env.reset();
    now = at(3, 0, 0);
    start();
    settings.reminderEnabled.set(true);
    live(60min);
    EXPECT_EQ(shownCount(), 1U) << "it was not wanted when it was due";
}

TEST_F(ReminderManagerTest, anotherTimeOfDayHoldsFromTheNextPlanning) {
    startWithWords(1);
    live(61min);
    settings.reminderHour.set(9);
    settings.reminderMinute.set(30);
    live(30min);
    EXPECT_EQ(shownCount(), 2U);
    settings.reminderMinute.set(0);
    live(60min);
    EXPECT_EQ(shownCount(), 2U) << "an earlier time is tomorrow's";
    EXPECT_EQ(env->reminders().pendingFireDate(), at(2, 9, 0));
}

TEST_F(ReminderManagerTest, theWallClockCountsWhereverTheUserIsAndWhateverItsRules) {
    startWithWords(1);
    live(61min);
    calendar = Calendar("Europe/Berlin");
    now = at(28, 8, 0);
    live(47h);
    EXPECT_EQ(env->reminders().pendingFireDate(), at(30, 9, 0));
    EXPECT_EQ(at(29, 9, 0) - at(28, 9, 0), 23h);
    EXPECT_EQ(shownCount(), 4U) << "one made up for, and those of the 28th and the 29th";
    settings.reminderHour.set(2);
    settings.reminderMinute.set(30);
    now = calendar.date({2026, 10, 24}, 12, 0);
    live(1min);
    const std::size_t before = shownCount();
    live(18h);
    EXPECT_EQ(shownCount(), before + 1) << "half past two came twice that night";
}

TEST_F(ReminderManagerTest, aClockThatIsWrongForAWhileNeitherHidesNorRepeatsAReminder) {
    startWithWords(1);
    live(61min);
    now = at(2, 8, 51);
    live(1min);
    now = at(1, 8, 0);
    live(2min);
    now = at(2, 9, 30);
    live(1min);
    EXPECT_EQ(shownCount(), 2U) << "the second day was jumped over";
    env.reset();
    now = dateFromSeconds(1000);
    start();
    live(1min);
    EXPECT_EQ(shownCount(), 2U);
    now = at(2, 9, 45);
    live(1min);
    EXPECT_EQ(shownCount(), 2U) << "shown before the machine forgot the time";
    now = at(3, 9, 10);
    live(1min);
    EXPECT_EQ(shownCount(), 3U);
    now += std::chrono::hours(24 * 1000);
    live(1min);
    EXPECT_EQ(shownCount(), 4U);
    now = at(4, 8, 0);
    env.reset();
    start();
    live(61min);
    EXPECT_EQ(shownCount(), 5U) << "no silence until the far day";
}

TEST_F(ReminderManagerTest, aBookThatCannotBeReadForAWhileOnlyDelaysTheReminder) {
    startWithWords(1);
    SQLiteDB book((data / AppEnvironment::bookName).string(), false);
    live(59min);
    book.execute("ALTER TABLE card RENAME TO away");
    live(3min);
    book.execute("ALTER TABLE away RENAME TO card");
    std::erase_if(notifier.notifications, [](const auto& each) { return each.identifier.empty(); });
    EXPECT_EQ(shownCount(), 0U);
    live(1min);
    EXPECT_THAT(shown(), ElementsAre("今天有 1 个生词该复习了，大约 1 分钟。"));
}

TEST_F(ReminderManagerTest, whateverHappensEachFireDateIsShownOnceWithinAMinute) {
    startWithWords(1);
    std::mt19937 random(11); // The same steps each time.
    const auto upTo = [&](int most) { return std::uniform_int_distribution(1, most)(random); };
    const std::array zones{"Asia/Shanghai", "Europe/Berlin", "America/St_Johns", "Asia/Tokyo"};
    Date seenUntil = now;
    std::size_t timesDue = 0;
    for (int step = 0; step < 3000; ++step) {
        switch (upTo(8)) {
        case 1:
            now += std::chrono::minutes(upTo(3000));
            break;
        case 2:
            now -= std::chrono::minutes(upTo(300));
            break;
        case 3:
            calendar = Calendar(zones.at(static_cast<std::size_t>(upTo(4) - 1)));
            break;
        case 4:
            settings.reminderHour.set(upTo(23));
            settings.reminderMinute.set(upTo(59));
            env->refreshCounts();
            seenUntil = std::max(seenUntil, now);
            break;
        case 5:
            env.reset();
            start();
            break;
        default:
            break;
        }
        live(1min);
        bool isDue = false;
        for (Date day = now - 72h; day <= now + 24h; day += 24h) {
            const Date fireDate =
                calendar.date(calendar.wallTime(day).day, settings.reminderHour.value(),
                              settings.reminderMinute.value());
            isDue = isDue || (fireDate > seenUntil && fireDate <= now);
        }
        if (isDue) seenUntil = now;
        ASSERT_EQ(shownCount(), timesDue += isDue ? 1 : 0) << "step " << step;
    }
    EXPECT_GT(timesDue, 100U);
}

TEST_F(ReminderManagerTest, anAnswerOpensTheReviewAndOneToSomethingElseDoesNot) {
    start();
    notifier.respond("tavik.daily-review");
    int opened = 0;
    env->reminders().setOnOpenReview([&] { ++opened; });
    notifier.respond("tavik.daily-review");
    notifier.respond("tavik.test");
    notifier.respond("else");
    EXPECT_EQ(opened, 2);
    env.reset();
    EXPECT_FALSE(notifier.respond) << "nobody is there any more";
}

TEST_F(ReminderManagerTest, aTestComesASecondLaterAndThePermissionIsTheDesktops) {
    start();
    env->reminders().sendTestNotification();
    test::addWord(env->store(), "word");
    queue.runAll();
    env->reminders().sendTestNotification();
    EXPECT_EQ(shownCount(), 0U);
    pass(1s);
    EXPECT_THAT(shown(), ElementsAre("今天有 1 个生词该复习了。"));
    EXPECT_EQ(notifier.notifications.front().identifier, "tavik.test");
    EXPECT_EQ(notifier.notifications.front().action, "开始复习");
    std::string answers;
    env->reminders().authorizationStatus(
        [&](Status status) { answers += status == Status::denied ? "denied " : "authorized "; });
    notifier.answerAll(Status::denied);
    env->reminders().requestAuthorization(
        [&](bool isGranted) { answers += isGranted ? "granted" : "refused"; });
    notifier.answerAll(Status::authorized);
    EXPECT_EQ(answers, "denied granted");
    env->reminders().requestAuthorization();
    env.reset();
    notifier.answerAll(Status::authorized);
}

} // namespace
} // namespace tavik
