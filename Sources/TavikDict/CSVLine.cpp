#include "TavikDict/CSVLine.h"

namespace tavik {
namespace {

/// Reads the quoted field whose opening quote is at `offset`; moves `offset` behind its closing
/// one.
std::optional<std::string> quotedField(std::string_view line, std::size_t& offset) {
    std::string field;
    for (++offset; offset < line.size(); ++offset) {
        if (line[offset] != '"') {
            field += line[offset];
        } else if (offset + 1 < line.size() && line[offset + 1] == '"') {
            field += line[offset++];
        } else {
            ++offset;
            return field;
        }
    }
    return std::nullopt;
}

std::optional<std::string> plainField(std::string_view line, std::size_t& offset) {
    const std::size_t end = std::min(line.find(',', offset), line.size());
    std::string field(line.substr(offset, end - offset));
    offset = end;
    if (field.find('"') != std::string::npos) return std::nullopt;
    return field;
}

} // namespace

std::optional<std::vector<std::string>> csvFields(std::string_view line) {
    std::vector<std::string> fields;
    for (std::size_t offset = 0;; ++offset) {
        const bool isQuoted = offset < line.size() && line[offset] == '"';
        auto field = isQuoted ? quotedField(line, offset) : plainField(line, offset);
        if (!field) return std::nullopt;
        fields.push_back(std::move(*field));
        if (offset == line.size()) return fields;
        if (line[offset] != ',') return std::nullopt;
    }
}

} // namespace tavik
