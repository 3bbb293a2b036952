#include "Platform/Linux/DBus/DesktopNotifier.h"
#include "Platform/Support/BusTests.h"
#include "Platform/Support/NotificationClicks.h"
#include "Support/ChildProcess.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <future>
#include <thread>

namespace tavik {
namespace {

using testing::AllOf;
using testing::AnyOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using Status = Notifier::AuthorizationStatus;

constexpr auto serviceName = "org.freedesktop.Notifications";
constexpr auto servicePath = "/org/freedesktop/Notifications";

class NotifierTests : public test::BusTests {
protected:
    void letGo() override { notifier.reset(); }

    void make() {
        notifier.emplace(open(), queue);
        notifier->setOnResponse(
            [this](const std::string& identifier) { responses.push_back(identifier); });
    }

    std::vector<std::string> recorderCommand() const {
        return {"/usr/bin/python3",    "-m",        "dbusmock", "--session", "--template",
                "notification_daemon", "--logfile", log};
    }

    /// A service that writes each call into a file, and counts its notifications from 1 on.
    test::PrivateBus::Program startRecorder(const std::string& capabilities) {
        return apart([&] {
            std::filesystem::remove(log);
            auto command = recorderCommand();
            command.insert(command.end(),
                           {"--parameters", R"({"capabilities": ")" + capabilities + "\"}"});
            return bus.start(command, serviceName);
        });
    }

    /// What the recorder has written once it knows of so many notifications.
    std::string recorded(std::size_t count) {
        std::string text;
        runUntil([&] {
            text = std::filesystem::exists(log) ? test::readFile(log) : "";
            return occurrences(text, " Notify ") >= count;
        });
        return text;
    }

    static std::size_t occurrences(const std::string& text, const std::string& part) {
        std::size_t count = 0;
        for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
            ++count;
        return count;
    }

    /// One with a button.
    static Notification reminder(const std::string& identifier, const std::string& body = "") {
        return {.title = "Tavik 生词复习",
                .body = body,
                .identifier = identifier,
                .action = "开始复习"};
    }

    /// Lets the recorder send a signal of notifications.
    void emit(const std::string& signal, const std::string& signature, const std::string& values) {
        apart([&] {
            bus.tell(serviceName, servicePath, "org.freedesktop.DBus.Mock.EmitSignal",
                     {serviceName, signal, signature, values});
        });
    }

    void respond(int number, const std::string& key) {
        emit("ActionInvoked", "us", "[<uint32 " + std::to_string(number) + ">, <'" + key + "'>]");
    }

    bool responded(std::size_t count) {
        return runUntil([&] { return responses.size() >= count; });
    }

    Status status() {
        std::optional<Status> answer;
        notifier->authorizationStatus([&](Status told) { answer = told; });
        EXPECT_FALSE(answer);
        EXPECT_TRUE(runUntil([&] { return answer.has_value(); }));
        return answer.value_or(Status::denied);
    }

    std::string log = bus.file("log");
    std::optional<DesktopNotifier> notifier;
    std::vector<std::string> responses;
};

TEST_F(NotifierTests, theBodyArrivesAsItIsWrittenWhetherTheServiceKnowsMarkupOrNot) {
    auto recorder = startRecorder("body body-markup");
    make();
    notifier->notify({"<b>&", "<b>& 该复习了"});
    notifier->notify({"again", "a > b"});
    const std::string withMarkup = recorded(2);
    EXPECT_THAT(withMarkup,
                HasSubstr(R"(Notify "Tavik" 0 "com.tavik.app" "<b>&" "&lt;b&gt;&amp; )"));
    EXPECT_THAT(withMarkup, HasSubstr(R"("a &gt; b" [] {"desktop-entry": "com.tavik.app"} -1)"));
    EXPECT_EQ(occurrences(withMarkup, "GetCapabilities"), 1U);
    end(recorder);
    recorder = startRecorder("body");
    notifier->notify({"plain", "<b>&"});
    EXPECT_THAT(recorded(1), HasSubstr(R"("plain" "<b>&" [])"));
}

TEST_F(NotifierTests, textOfAnyKindArrives) {
    const auto recorder = startRecorder("body actions");
    make();
    const std::string wild("a\xff\0b", 4);
    notifier->notify({wild, "", wild, wild, wild});
    notifier->notify({"last", "\x01"});
    EXPECT_THAT(recorded(2), HasSubstr("\"a\xef\xbf\xbd\" \"\""));
}

TEST_F(NotifierTests, categorySoundAndButtonAreAskedForWhereTheyAreWantedAndPossible) {
    auto recorder = startRecorder("body actions");
    make();
    Notification notification = reminder("review");
    notification.category = "REVIEW";
    notification.hasSound = true;
    notifier->notify(notification);
    const std::string hints = R"({"desktop-entry": "com.tavik.app", "category": "REVIEW", )"
                              R"("sound-name": "message-new-instant"} -1)";
    EXPECT_THAT(recorded(1), HasSubstr(R"(["default", "", "start", "开始复习"] )" + hints));
    notifier->notify({"only to be read", ""});
    EXPECT_THAT(recorded(2), HasSubstr(R"("" [] {"desktop-entry")"));
    end(recorder);
    recorder = startRecorder("body");
    notifier->notify(notification);
    EXPECT_THAT(recorded(1), HasSubstr("[] " + hints));
}

TEST_F(NotifierTests, aNotificationReplacesTheLastWithItsIdentifierOfTheServiceThatRuns) {
    auto recorder = startRecorder("body");
    make();
    for (const auto* identifier : {"", "", "a", "b", "b", "a"})
        notifier->notify({"title", "", identifier});
    // The last two of a kind wait for the capabilities together, and then it is one.
    const std::string first = recorded(4);
    EXPECT_EQ(occurrences(first, "\"Tavik\" 0 "), 4U);
    notifier->notify({"title", "", "b"});
    EXPECT_THAT(recorded(5), HasSubstr("\"Tavik\" 3 "));
    notifier->notify({"title", "", "a"});
    EXPECT_THAT(recorded(6), HasSubstr("\"Tavik\" 4 "));
    end(recorder);
    recorder = startRecorder("body");
    notifier->notify({"title", "", "a"});
    EXPECT_THAT(recorded(1), HasSubstr("\"Tavik\" 0 "));
}

TEST_F(NotifierTests, quickOnesBecomeOneAlsoWhenTheServiceHangsAndAnotherTakesItsPlace) {
    const auto recorder = startRecorder("body");
    make();
    notifier->notify({"before", ""});
    recorded(1);
    recorder->signal(SIGSTOP);
    for (const auto* title : {"first", "second", "third"}) {
        notifier->notify({title, "", "review"});
        runForAWhile();
    }
    recorder->signal(SIGCONT);
    const std::string text = recorded(3);
    EXPECT_THAT(text, HasSubstr(R"("Tavik" 0 "com.tavik.app" "first")"));
    EXPECT_THAT(text, Not(HasSubstr("second")));
    EXPECT_THAT(text, HasSubstr(R"("Tavik" 2 "com.tavik.app" "third")"));
    recorder->signal(SIGSTOP);
    notifier->notify({"lost", "", "review"});
    notifier->notify({"waiting", "", "review"});
    runForAWhile();
    const auto successor = startRecorder("body");
    EXPECT_THAT(recorded(1), HasSubstr(R"("Tavik" 0 "com.tavik.app" "waiting")"));
}

TEST_F(NotifierTests, anAnswerIsHeardByClickAndByButtonBeforeAndAfterTheNotificationIsClosed) {
    auto recorder = startRecorder("body actions");
    make();
    notifier->notify(reminder("a"));
    notifier->notify(reminder("b"));
    recorded(2);
    respond(1, "default");
    emit("NotificationClosed", "uu", "[<uint32 1>, <uint32 2>]");
    emit("NotificationClosed", "uu", "[<uint32 2>, <uint32 2>]");
    respond(2, "start");
    EXPECT_TRUE(responded(2));
    EXPECT_THAT(responses, ElementsAre("a", "b"));
    end(recorder);
    recorder = startRecorder("body actions");
    respond(2, "start");
    notifier->notify(reminder("c"));
    recorded(1);
    notifier->setOnResponse([this](const std::string& identifier) {
        responses.push_back("first " + identifier);
        notifier->setOnResponse({});
    });
    respond(1, "start");
    respond(1, "start");
    EXPECT_TRUE(responded(3));
    runForAWhile();
    EXPECT_THAT(responses, ElementsAre("a", "b", "first c"));
}

TEST_F(NotifierTests, whatIsNoAnswerToOursIsNotHeard) {
    const auto recorder = startRecorder("body actions");
    make();
    notifier->notify(reminder("ours"));
    notifier->notify({"without a button", "", "read"});
    notifier->notify(reminder("changed"));
    recorded(3);
    notifier->notify({"has no button any more", "", "changed"});
    recorded(4);
    for (const int other : {0, 2, 3, 77})
        respond(other, "default");
    respond(1, "settings");
    emit("ActionInvoked", "s", "[<'default'>]");
    emit("ActionInvoked", "uss", "[<uint32 1>, <'default'>, <'more'>]");
    emit("ActionInvoked", "is", "[<1>, <'default'>]");
    std::promise<std::string> name;
    connection->whenReady([&](bool) { name.set_value(connection->uniqueName()); });
    apart([&] {
        const std::vector<std::string> forgery{
            "/usr/bin/gdbus", "emit",     "--address",
            bus.address(),    "--signal", std::string(serviceName) + ".ActionInvoked",
            "--object-path",  servicePath};
        for (const auto& addressee :
             {std::vector<std::string>{},
              std::vector<std::string>{"--dest", name.get_future().get()}}) {
            auto command = forgery;
            command.insert(command.end(), addressee.begin(), addressee.end());
            command.insert(command.end(), {"uint32 1", "'default'"});
            EXPECT_EQ(test::runProcess(command).exitCode, 0);
        }
    });
    runForAWhile();
    EXPECT_TRUE(responses.empty());
    respond(1, "default");
    EXPECT_TRUE(responded(1));
    EXPECT_THAT(responses, ElementsAre("ours"));
}

TEST_F(NotifierTests, nothingIsToldOnceTheNotifierIsGone) {
    const auto recorder = startRecorder("body actions");
    make();
    notifier->notify(reminder("a"));
    recorded(1);
    bool isTold = false;
    apart([&] {
        notifier->authorizationStatus([&](Status) { isTold = true; });
        bus.tell(serviceName, servicePath, "org.freedesktop.DBus.Mock.EmitSignal",
                 {serviceName, "ActionInvoked", "us", "[<uint32 1>, <'start'>]"});
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        // Both are in the main queue by now.
        notifier.reset();
    });
    runForAWhile();
    EXPECT_FALSE(isTold);
    EXPECT_TRUE(responses.empty());
}

TEST_F(NotifierTests, theStatusTellsWhetherSomebodyIsThereOrCanBeStarted) {
    make();
    EXPECT_EQ(status(), Status::denied);
    {
        const auto recorder = startRecorder("body");
        EXPECT_EQ(status(), Status::authorized);
    }
    EXPECT_EQ(status(), Status::denied);
    apart([&] { bus.makeStartable(recorderCommand(), serviceName); });
    std::filesystem::remove(log);
    EXPECT_EQ(status(), Status::authorized);
    EXPECT_FALSE(std::filesystem::exists(log)) << "the question has started it";
    notifier->notify({"started", ""});
    EXPECT_THAT(recorded(1), HasSubstr("\"started\""));
    apart([&] { bus.end(); });
    EXPECT_EQ(status(), Status::denied);
    make();
    EXPECT_EQ(status(), Status::denied) << "there is no bus";
}

TEST_F(NotifierTests, aBusThatDoesNotAnswerDeniesAfterTwoSeconds) {
    make();
    EXPECT_EQ(status(), Status::denied);
    bus.signal(SIGSTOP);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(status(), Status::denied);
    make();
    EXPECT_EQ(status(), Status::denied) << "not connected yet";
    const auto time = std::chrono::steady_clock::now() - start;
    EXPECT_GE(time, std::chrono::seconds(4));
    EXPECT_LT(time, std::chrono::seconds(8));
    notifier->authorizationStatus([](Status) { ADD_FAILURE() << "told after the end"; });
}

TEST_F(NotifierTests, whatNobodyCouldShowIsShownOnceThereIsAServiceIfItHasAName) {
    make();
    notifier->notify({"lost", ""});
    notifier->notify(reminder("review", "earlier"));
    runForAWhile();
    notifier->notify(reminder("review", "missed"));
    runForAWhile();
    auto hung = startDaemon({"name-hung", serviceName});
    notifier->notify({"hung", ""});
    runForAWhile();
    end(hung);
    const auto recorder = startRecorder("body");
    notifier->notify({"shown", ""});
    const std::string all = recorded(2);
    EXPECT_THAT(all, AllOf(HasSubstr("\"shown\""), HasSubstr("\"missed\"")));
    EXPECT_THAT(all, Not(AnyOf(HasSubstr("\"lost\""), HasSubstr("\"earlier\""))));
}

TEST_F(NotifierTests, aHungBusOrServiceIsNotFelt) {
    const auto hung = startDaemon({"name-hung", serviceName});
    make();
    notifier->notify({"hung", ""});
    runForAWhile();
    notifier.reset();
    bus.signal(SIGSTOP);
    make();
    notifier->notify({"hung", ""});
    runForAWhile();
}

/// With the services that users run.
class NotificationServiceTests : public NotifierTests,
                                 public testing::WithParamInterface<const char*> {
protected:
    void SetUp() override {
        NotifierTests::SetUp();
        service = startDaemon({GetParam()});
        make();
    }

    bool isDunst() const { return std::string(GetParam()) == "notifications-dunst"; }

    std::string tellDunst(const std::string& method,
                          const std::vector<std::string>& arguments = {}) {
        return apart([&] { return bus.tell(serviceName, servicePath, method, arguments); });
    }

    /// How many notifications show.
    std::size_t shown() {
        if (isDunst()) {
            const std::string count = tellDunst("org.freedesktop.DBus.Properties.Get",
                                                {"org.dunstproject.cmd0", "displayedLength"});
            return std::stoul(count.substr(count.rfind(' ') + 1));
        }
        const auto windows = apart([] {
            return test::runProcess(
                {"/usr/bin/xdotool", "search", "--onlyvisible", "--class", "^xfce4-notifyd$"});
        });
        return static_cast<std::size_t>(std::ranges::count(windows.output, '\n'));
    }

    bool shows(std::size_t count) {
        return runUntil([&] { return shown() == count; });
    }

    bool click() {
        return apart([&] { return test::clickNotificationButton(GetParam(), "开始复习"); });
    }

    test::PrivateBus::Program service;
};

INSTANTIATE_TEST_SUITE_P(
    , NotificationServiceTests, testing::Values("notifications-dunst", "notifications-xfce"),
    [](const auto& daemon) {
        return std::string(daemon.param).substr(std::string("notifications-").size());
    });

TEST_P(NotificationServiceTests, aClickOnTheButtonIsHeardAndWhatItHasClosedIsShownAnew) {
    for (const std::size_t times : {1U, 2U}) {
        notifier->notify(reminder("review", "有 12 个生词该复习了"));
        EXPECT_TRUE(shows(1));
        ASSERT_TRUE(click());
        EXPECT_TRUE(responded(times));
        EXPECT_TRUE(shows(0));
    }
    EXPECT_THAT(responses, ElementsAre("review", "review"));
}

TEST_P(NotificationServiceTests, oneTakesThePlaceOfAnother) {
    notifier->notify(reminder("review", "1 个"));
    EXPECT_TRUE(shows(1));
    notifier->notify(reminder("review", "2 个"));
    notifier->notify({"另一个", ""});
    EXPECT_TRUE(shows(2));
    runForAWhile();
    EXPECT_EQ(shown(), 2U);
}

TEST_F(NotifierTests, aRealServiceShowsTheBodyAsItIsWritten) {
    const auto dunst = startDaemon({"notifications-dunst"});
    make();
    notifier->notify({"Tavik 生词复习", "<b>& 3 个"});
    const auto tellDunst = [&](const std::string& method) {
        return apart([&] {
            return bus.tell(serviceName, servicePath, "org.dunstproject.cmd0." + method, {});
        });
    };
    std::string history;
    EXPECT_TRUE(runUntil([&] {
        tellDunst("NotificationCloseAll");
        history = tellDunst("NotificationListHistory");
        return history.find("Tavik 生词复习") != std::string::npos;
    }));
    EXPECT_THAT(history, HasSubstr("'body': <'&lt;b&gt;&amp; 3 个'>"));
}

} // namespace
} // namespace tavik
