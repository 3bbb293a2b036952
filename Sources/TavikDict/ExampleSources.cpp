#include "TavikDict/ExampleSources.h"

#include "TavikDict/LineReader.h"
#include "Text/CharacterClasses.h"
#include "Text/Unicode.h"

namespace tavik {
namespace {

/// The columns between tabs, white space trimmed; empty ones count.
std::vector<std::string_view> columns(std::string_view line) {
    std::vector<std::string_view> result;
    for (std::size_t start = 0; start <= line.size();) {
        const std::size_t end = std::min(line.find('\t', start), line.size());
        result.push_back(trimmed(line.substr(start, end - start), isWhiteSpace));
        start = end + 1;
    }
    return result;
}

std::vector<AttributedSentence> readPairs(const std::filesystem::path& file,
                                          std::size_t columnCount, BuildObserver& observer) {
    std::vector<AttributedSentence> pairs;
    LineReader reader(file);
    while (reader.next()) {
        if (trimmed(reader.line(), isWhiteSpace).empty()) continue;
        const auto fields = columns(reader.line());
        const bool isWellFormed = reader.isCleanText() && fields.size() == columnCount
                                  && !fields[0].empty() && !fields[1].empty();
        if (!isWellFormed) {
            observer.lineSkipped(file, reader.number(), "格式不对");
            continue;
        }
        pairs.push_back({{std::string(fields[0]), std::string(fields[1])},
                         columnCount > 2 ? std::string(fields[2]) : std::string()});
    }
    return pairs;
}

} // namespace

std::vector<AttributedSentence> readSentencePairs(const std::filesystem::path& file,
                                                  BuildObserver& observer) {
    return readPairs(file, 2, observer);
}

std::vector<AttributedSentence> readTatoeba(const std::filesystem::path& file,
                                            BuildObserver& observer) {
    return readPairs(file, 3, observer);
}

} // namespace tavik
