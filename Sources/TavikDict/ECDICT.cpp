#include "TavikDict/ECDICT.h"

#include "TavikDict/BuildError.h"
#include "TavikDict/CSVLine.h"
#include "TavikDict/LineReader.h"
#include "Text/CharacterClasses.h"
#include "Text/Unicode.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace tavik {
namespace {

constexpr std::string_view header =
    "word,phonetic,definition,translation,pos,collins,oxford,tag,bnc,frq,exchange,detail,audio";

/// The columns of the file, in its order.
enum Column : std::size_t {
    word,
    phonetic,
    definition,
    translation,
    pos,
    collins,
    oxford,
    tag,
    bnc,
    frq,
    exchange,
    detail,
    audio,
    columnCount
};

/// The file writes line breaks as "\n" and "\r\n", a backslash as "\\".
std::string unescaped(std::string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\' || i + 1 == text.size()) {
            result += text[i];
            continue;
        }
        switch (text[++i]) {
        case 'n':
            result += '\n';
            break;
        case 'r':
            break;
        case '\\':
            result += '\\';
            break;
        default:
            result.append({'\\', text[i]});
        }
    }
    return result;
}

/// In some transcriptions a run of backslashes stands where the vowel of «bird» lost its letter.
std::string repairedPhonetic(const std::string& field) {
    std::string result;
    bool isLost = false;
    for (const char unit : field) {
        if (unit == '\\') {
            isLost = true;
            continue;
        }
        if (isLost && unit == ':') result += "ə";
        isLost = false;
        result += unit;
    }
    return result;
}

/// Half of the definitions mark the part of speech with WordNet's bare letter, "s" for adjectives
/// that go with another; all get the usual mark.
std::string withUsualMarks(const std::string& definition) {
    constexpr std::array<std::pair<std::string_view, std::string_view>, 7> marks{{{"n", "n."},
                                                                                  {"v", "v."},
                                                                                  {"a", "a."},
                                                                                  {"s", "a."},
                                                                                  {"s.", "a."},
                                                                                  {"r", "adv."},
                                                                                  {"r.", "adv."}}};
    std::string result;
    for (std::size_t start = 0; start < definition.size();) {
        const std::size_t end = std::min(definition.find('\n', start), definition.size() - 1) + 1;
        const std::string_view line = std::string_view(definition).substr(start, end - start);
        const std::size_t blank = std::min(line.find(' '), line.size());
        const auto* const mark = std::find_if(marks.begin(), marks.end(), [&](const auto& pair) {
            return pair.first == line.substr(0, blank);
        });
        result += mark == marks.end() ? line.substr(0, blank) : mark->second;
        result += line.substr(blank);
        start = end;
    }
    return result;
}

/// A number of an optional column: nothing for an empty field, false for one that is no number.
bool readNumber(const std::string& field, std::optional<std::int64_t>& number) {
    if (field.empty()) return true;
    std::int64_t value = 0;
    const char* const end = field.data() + field.size();
    const auto [stop, error] = std::from_chars(field.data(), end, value);
    number = value;
    return error == std::errc() && stop == end && value >= 0;
}

bool isSlash(char32_t scalar) {
    return scalar == '/';
}

bool hasKey(std::string_view item, std::string_view key) {
    return item.size() > key.size() && item.substr(0, key.size()) == key && item[key.size()] == ':';
}

} // namespace

std::int64_t Headword::rank() const {
    if (bnc == 0 || frq == 0) return std::max(bnc, frq);
    return std::min(bnc, frq);
}

std::optional<Headword> parseHeadword(std::string_view line) {
    const auto fields = csvFields(line);
    if (!fields || fields->size() != columnCount) return std::nullopt;
    const auto field = [&](Column column) -> const std::string& { return (*fields)[column]; };
    Headword headword;
    std::optional<std::int64_t> bncRank;
    std::optional<std::int64_t> frqRank;
    if (!readNumber(field(collins), headword.collins) || !readNumber(field(oxford), headword.oxford)
        || !readNumber(field(bnc), bncRank) || !readNumber(field(frq), frqRank))
        return std::nullopt;
    headword.word = trimmed(unescaped(field(word)), isWhiteSpace);
    if (headword.word.empty()) return std::nullopt;
    headword.phonetic = repairedPhonetic(field(phonetic));
    headword.definition = withUsualMarks(unescaped(field(definition)));
    headword.translation = unescaped(field(translation));
    headword.tag = field(tag);
    headword.bnc = bncRank.value_or(0);
    headword.frq = frqRank.value_or(0);
    headword.exchange = field(exchange);
    return headword;
}

std::vector<Headword> readHeadwords(const std::filesystem::path& csv, BuildObserver& observer) {
    LineReader reader(csv);
    if (!reader.next() || reader.line() != header)
        throw BuildError(csv.string() + " 不是 ECDICT 的词表：第一行不是它的列名");
    const auto size = static_cast<std::int64_t>(std::filesystem::file_size(csv));
    observer.stageBegan("读取词表", size);
    std::vector<Headword> headwords;
    std::int64_t bytes = 0;
    while (reader.next()) {
        bytes += static_cast<std::int64_t>(reader.line().size()) + 1;
        auto headword = reader.isCleanText() ? parseHeadword(reader.line()) : std::nullopt;
        if (headword)
            headwords.push_back(std::move(*headword));
        else
            observer.lineSkipped(csv, reader.number(), "格式不对");
        observer.stageAdvanced(bytes);
    }
    if (headwords.empty()) throw BuildError(csv.string() + " 里没有一个词条");
    return headwords;
}

std::string exchangeWith(std::string_view exchange, std::string_view key,
                         const std::optional<std::string>& form) {
    std::vector<std::string_view> kept;
    for (const std::string_view item : split(exchange, isSlash))
        if (!hasKey(item, key)) kept.push_back(item);
    std::string result = joined(kept, "/");
    if (!form) return result;
    if (!result.empty()) result += '/';
    return result.append(key).append(":").append(*form);
}

std::string_view exchangeForm(std::string_view exchange, std::string_view key) {
    std::string_view form;
    for (const std::string_view item : split(exchange, isSlash))
        if (hasKey(item, key)) form = item.substr(key.size() + 1);
    return form;
}

} // namespace tavik
