#include "TavikCLI/ReviewCommand.h"

#include "Base/PreferencesFile.h"
#include "Dictionary/OfflineDictionary.h"
#include "Learning/IntervalLabel.h"
#include "Learning/SchedulerKind.h"
#include "TavikCLI/Book.h"
#include "TavikCLI/DictionaryFile.h"
#include "TavikCLI/ReviewSession.h"
#include "TavikCLI/VocabularyReport.h"
#include "TavikTerminal/CommandLine.h"
#include "TavikTerminal/KeyReader.h"

#include <unistd.h>

#include <iostream>

namespace tavik {
namespace {

constexpr int maxExamples = 2;
constexpr double minRetention = 0.7;
constexpr double maxRetention = 0.97;

/// The conversation over one session.
class ReviewDialogue {
public:
    ReviewDialogue(ReviewSession& session, const OfflineDictionary* dictionary)
        : session(session), dictionary(dictionary) {}

    /// Until all is done or the user leaves.
    void run() {
        while (session.current() != nullptr) {
            ask();
            if (!waitForReveal()) break;
            answer();
            const auto rating = waitForRating();
            if (!rating) break;
            const bool isRated = session.rate(*rating, currentDate());
            if (isRated) ++given;
            print(report().inStyle(TextStyle::faint,
                                   isRated ? label(*rating) : "这个词已经不在生词本里了")
                  + "\n\n");
        }
        finish();
    }

private:
    Report report() const { return Report(terminal); }

    static void print(const std::string& text) { std::cout << text << std::flush; }

    void ask() const {
        Report question = report();
        const Word& word = session.current()->word;
        question.line(question.inStyle(TextStyle::faint, std::to_string(session.position() + 1)
                                                             + " / "
                                                             + std::to_string(session.size()))
                      + "  " + question.inStyle(TextStyle::bold, word.headword));
        if (const auto encounter = session.encounter())
            addEncounter(question, withoutMeaning(*encounter), word, 2);
        question.line(
            question.inStyle(TextStyle::faint, "先回想它的意思，再看答案（空格显示答案，q 结束）"));
        print(question.finished());
    }

    /// The question must not give the answer away.
    static Encounter withoutMeaning(Encounter encounter) {
        encounter.contextMeaning.reset();
        return encounter;
    }

    void answer() const {
        Report shown = report();
        const Word& word = session.current()->word;
        shown.line("");
        shown.line(wordTitle(shown, word));
        for (const std::string& definition : definitions(word))
            shown.paragraph(definition, 2);
        const auto encounter = session.encounter();
        if (encounter && encounter->contextMeaning)
            shown.paragraph("本句：" + *encounter->contextMeaning, 2);
        if (dictionary != nullptr)
            for (const auto& [en, zh] : dictionary->examples(word.lemma, maxExamples)) {
                shown.paragraph(en, 2, TextStyle::faint);
                if (!zh.empty()) shown.paragraph(zh, 4, TextStyle::faint);
            }
        shown.line("");
        shown.line(ratings(shown));
        print(shown.finished());
    }

    std::vector<std::string> definitions(const Word& word) const {
        if (dictionary != nullptr)
            if (const auto entry = dictionary->entry(word.lemma)) return entry->translations;
        return {word.brief.empty() ? "（没有释义）" : word.brief};
    }

    std::string ratings(const Report& shown) const {
        const Date now = currentDate();
        const RatingMap<Date> due = session.preview(now);
        std::string line;
        for (const Rating rating : allRatings)
            line += (line.empty() ? "" : "   ")
                    + shown.inStyle(TextStyle::bold, std::to_string(rawValue(rating))) + ' '
                    + std::string(label(rating)) + ' '
                    + shown.inStyle(TextStyle::faint, intervalLabel(now, due[rating]));
        return line;
    }

    /// False when the user leaves.
    bool waitForReveal() {
        while (const auto key = keys.next()) {
            if (*key == ' ' || (keys.isTerminal() && *key == '\n')) return true;
            if (isLeaving(*key)) return false;
        }
        return false;
    }

    std::optional<Rating> waitForRating() {
        while (const auto key = keys.next()) {
            if (const auto rating = ratingFromRawValue(*key - '0')) return rating;
            if (isLeaving(*key)) return std::nullopt;
        }
        return std::nullopt;
    }

    static bool isLeaving(char key) { return key == 'q' || key == 'Q'; }

    void finish() const {
        Report end = report();
        const bool isDone = session.current() == nullptr;
        if (isDone && given == 0)
            end.line("现在没有需要复习的单词");
        else if (isDone)
            end.line(end.inStyle(TextStyle::bold, "今天的复习完成了！"));
        if (given > 0) end.line("本次复习了 " + std::to_string(given) + " 次。");
        if (!isDone)
            end.line("还有 " + std::to_string(session.size() - session.position())
                     + " 个没有复习，已经评过的都存好了。");
        print(end.finished());
    }

    ReviewSession& session;
    const OfflineDictionary* dictionary;
    Terminal terminal = Terminal::of(STDOUT_FILENO);
    KeyReader keys{STDIN_FILENO};
    int given = 0;
};

} // namespace

ReviewCommand::ReviewCommand(CLI::App& app)
    : Command(app, "review", "复习到期的单词：空格看答案，1 到 4 打分，q 结束") {
    options()
        .add_option("--scheduler", schedulerName,
                    "fsrs（记忆曲线）或 fixed（固定间隔），默认照 Tavik 的设置")
        ->option_text("名称")
        ->check([](const std::string& name) {
            return schedulerKindFromRawValue(name) ? "" : "只能是 fsrs 或 fixed";
        });
    options()
        .add_option("--retention", retention,
                    "fsrs 希望到期时还记得的比例，0.7 到 0.97，默认照 Tavik 的设置")
        ->option_text("比例")
        ->check(within(minRetention, maxRetention, "应在 0.7 到 0.97 之间"));
    options()
        .add_option("--limit", limit, "最多复习几个，默认 500")
        ->option_text("个数")
        ->check(within(1, maxLimit, "应是 1 到 1000000 的整数"));
    addDictionaryOption(dictionaryPath);
    options().footer("每次打分立刻存盘，随时可以结束。忘记的词在本次最后再来一遍。");
}

std::unique_ptr<Scheduler> ReviewCommand::scheduler() const {
    const Preferences preferences = PreferencesFile(preferencesPath(environmentVariable)).values();
    const auto named = schedulerKindFromRawValue(schedulerName);
    return makeScheduler(named.value_or(schedulerKind(preferences)),
                         retention.value_or(desiredRetention(preferences)));
}

int ReviewCommand::run() const {
    return withBook([&](VocabularyStore& book) {
        const auto dictionary = openDictionaryIfAny(dictionaryPath);
        const auto chosen = scheduler();
        ReviewSession session(book, *chosen, currentDate(), limit);
        ReviewDialogue(session, dictionary.get()).run();
        return exitOK;
    });
}

} // namespace tavik
