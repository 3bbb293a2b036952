#include "Support/SampleDictionary.h"

#include "Dictionary/DictionarySchema.h"
#include "Storage/SQLiteDB.h"

namespace tavik::test {

void makeSampleDictionary(const std::string& path) {
    SQLiteDB db(path, false);
    db.execute("PRAGMA journal_mode=DELETE; PRAGMA synchronous=OFF");
    db.execute(DictionarySchema::tables);
    db.execute(DictionarySchema::indexes);
    db.execute(R"(
INSERT INTO dict VALUES
 ('run', 'rʌn', 'n. 跑' || char(10) || 'v. 奔跑', 'n. the act of running', 'zk gk', 5, 1,
  'p:ran/d:run/i:running/3:runs/s:runs'),
 ('running', '''rʌniŋ', 'n. 赛跑', NULL, '', NULL, NULL, '0:run/1:i'),
 ('go', 'gәu', 'v. 去', 'v. move', 'zk', 5, 1, 'p:went/d:gone/i:going/3:goes'),
 ('went', 'went', 'go的过去式', '', '', NULL, NULL, '0:go/1:p'),
 ('give up', '', '放弃', '', '', NULL, NULL, ''),
 ('give', 'giv', 'v. 给', '', 'zk', 5, 1, ''),
 ('don''t', 'dәunt', '不要', '', '', NULL, NULL, ''),
 ('Polish', '''pәuliʃ', 'a. 波兰的', '', '', NULL, NULL, ''),
 ('polish', '''pɒliʃ', 'v. 磨光', '', '', 2, NULL, ''),
 ('mouse', 'maus', 'n. 老鼠', '', '', 3, 1, 's:mice'),
 ('mice', 'mais', 'n. 老鼠', '', '', NULL, NULL, ''),
 ('jame', '', '', '', '', NULL, NULL, '0:missing');
INSERT INTO lemmas VALUES ('mice', 'mouse'), ('gave', 'give'), ('foos', 'foo'), ('jame', 'jam');
INSERT INTO examples VALUES
 (1, 'He had to run for his life when the bear came near.', '熊靠近時他不得不逃命。'),
 (2, 'he had to RUN for his life when the bear came near.', '重复的句子。'),
 (3, 'They ran.', '他们跑了。'),
 (4, 'run along, now, and let your mother sleep a bit longer', ''),
 (5, 'She gave up.', '她放弃了。'),
 (6, 'Don''t do it.', '别这么做。');
INSERT INTO examples_fts(rowid, en, lem) VALUES
 (1, 'He had to run for his life when the bear came near.', ''),
 (2, 'he had to RUN for his life when the bear came near.', ''),
 (3, 'They ran.', 'They run.'),
 (4, 'run along, now, and let your mother sleep a bit longer', ''),
 (5, 'She gave up.', 'She give up.'),
 (6, 'Don''t do it.', '');
)");
}

} // namespace tavik::test
