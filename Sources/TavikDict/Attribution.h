#pragma once

#include <filesystem>
#include <string>

namespace tavik {

/// The text that says where the dictionary's data come from and on what terms. It ships beside the
/// database. The texts are those of the sources' own files.
struct AttributionTexts {
    std::string ecdictLicence;
    std::string lemmaListTerms;
    std::string wordNetLicence;
    bool hasOwnSentences = false;
    bool hasTatoeba = false;
};

std::string attribution(const AttributionTexts& texts);

/// `<stem>-<suffix>.txt` beside the database, for example "dict-attribution.txt".
std::filesystem::path besideDatabase(const std::filesystem::path& database,
                                     const std::string& suffix);

} // namespace tavik
