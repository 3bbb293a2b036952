#include "Vocabulary/VocabularyRecords.h"

#include "Text/URL.h"
#include "Text/Unicode.h"

#include <vector>

namespace tavik {
namespace {

/// The file name of a file's address, else its host; empty when it has neither.
std::string place(const std::string& address) {
    const auto url = URL::parse(address);
    if (!url) return {};
    if (url->isFile()) return url->lastPathComponent();
    return replacingAll(url->host, "www.", "");
}

} // namespace

std::string SourceInfo::label() const {
    std::vector<std::string_view> parts;
    if (appName && !appName->empty()) parts.emplace_back(*appName);
    const std::string from = url ? place(*url) : std::string();
    if (!from.empty()) parts.emplace_back(from);
    return joined(parts, " · ");
}

} // namespace tavik
