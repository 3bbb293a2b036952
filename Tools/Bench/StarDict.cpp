#include "StarDict.h"

#include <algorithm>
#include <compare>
#include <cstdint>
#include <fstream>
#include <limits>
#include <stdexcept>
#include <string>
#include <string_view>

namespace tavik {
namespace {

constexpr std::size_t maxWordBytes = 255;

unsigned char asciiLower(char unit) {
    const bool isUpper = unit >= 'A' && unit <= 'Z';
    return static_cast<unsigned char>(isUpper ? unit - 'A' + 'a' : unit);
}

/// The order that the format demands: bytes without ASCII case, then bytes as they are.
bool isBefore(const Headword* one, const Headword* other) {
    const auto order = std::lexicographical_compare_three_way(
        one->word.begin(), one->word.end(), other->word.begin(), other->word.end(),
        [](char left, char right) { return asciiLower(left) <=> asciiLower(right); });
    return std::is_eq(order) ? one->word < other->word : std::is_lt(order);
}

std::string article(const Headword& headword) {
    std::string text;
    for (const std::string* const part :
         {&headword.phonetic, &headword.translation, &headword.definition}) {
        if (part->empty()) continue;
        if (!text.empty()) text += '\n';
        text += *part;
    }
    return text;
}

std::string bigEndian(std::uint64_t number) {
    if (number > std::numeric_limits<std::uint32_t>::max())
        throw std::runtime_error("the articles are too long for StarDict");
    std::string bytes;
    for (const int shift : {24, 16, 8, 0})
        bytes += static_cast<char>(static_cast<unsigned char>(number >> shift));
    return bytes;
}

void writeFile(const std::filesystem::path& file, std::string_view content) {
    std::ofstream output(file, std::ios::binary);
    output << content;
    if (!output.flush()) throw std::runtime_error("cannot write " + file.string());
}

} // namespace

void writeStarDict(const std::vector<Headword>& headwords, const std::filesystem::path& directory) {
    std::vector<const Headword*> sorted;
    for (const Headword& headword : headwords)
        if (headword.word.size() <= maxWordBytes) sorted.push_back(&headword);
    std::sort(sorted.begin(), sorted.end(), isBefore);

    std::string index;
    std::string articles;
    for (const Headword* const headword : sorted) {
        const std::string text = article(*headword);
        index.append(headword->word).push_back('\0');
        index += bigEndian(articles.size()) + bigEndian(text.size());
        articles += text;
    }
    std::filesystem::create_directories(directory);
    writeFile(directory / "bench.idx", index);
    writeFile(directory / "bench.dict", articles);
    writeFile(directory / "bench.ifo", "StarDict's dict ifo file\nversion=2.4.2\nbookname=bench\n"
                                       "sametypesequence=m\nwordcount="
                                           + std::to_string(sorted.size()) + "\nidxfilesize="
                                           + std::to_string(index.size()) + '\n');
}

} // namespace tavik
