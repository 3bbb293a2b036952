#include "Text/Abbreviations.h"

#include <algorithm>
#include <unordered_set>

namespace tavik {
namespace {

using Words = std::unordered_set<std::u16string_view>;

const Words continuing{
    u"Mr.",   u"Mrs.",   u"Ms.",     u"Mx.",  u"Dr.",   u"Drs.",  u"Prof.", u"St.",   u"Ste.",
    u"Mt.",   u"Ft.",    u"Gen.",    u"Maj.", u"Col.",  u"Lt.",   u"Capt.", u"Cmdr.", u"Adm.",
    u"Sgt.",  u"Cpl.",   u"Pvt.",    u"Rev.", u"Fr.",   u"Hon.",  u"Sen.",  u"Rep.",  u"Gov.",
    u"Pres.", u"Supt.",  u"Messrs.", u"Mme.", u"Mlle.", u"Msgr.", u"e.g.",  u"E.g.",  u"i.e.",
    u"I.e.",  u"viz.",   u"cf.",     u"Cf.",  u"vs.",   u"Vs.",   u"v.",    u"al.",   u"ed.",
    u"eds.",  u"trans.", u"capt.",   u"gen.", u"esp.",  u"incl.",
};

const Words numbered{
    u"No.",   u"Nos.",    u"no.",  u"nos.",  u"p.",     u"pp.",  u"Vol.", u"vol.",
    u"vols.", u"Ch.",     u"ch.",  u"Sec.",  u"sec.",   u"Fig.", u"fig.", u"Figs.",
    u"figs.", u"Eq.",     u"eq.",  u"Art.",  u"art.",   u"Op.",  u"op.",  u"c.",
    u"ca.",   u"approx.", u"est.", u"Jan.",  u"Feb.",   u"Mar.", u"Apr.", u"Jun.",
    u"Jul.",  u"Aug.",    u"Sep.", u"Sept.", u"Oct.",   u"Nov.", u"Dec.", u"Mon.",
    u"Tue.",  u"Tues.",   u"Wed.", u"Thu.",  u"Thurs.", u"Fri.", u"Sat.", u"Sun.",
};

const Words ambiguous{u"Ave.", u"Blvd.", u"Rd.",  u"Dept.", u"dept.", u"Univ.", u"Co.", u"Corp.",
                      u"Ed.",  u"Ph.D.", u"M.D.", u"B.A.",  u"M.A.",  u"B.S.",  u"M.S."};

const Words openers{
    u"The",  u"A",       u"An",    u"This", u"That",  u"These",  u"Those",   u"There", u"Here",
    u"He",   u"She",     u"It",    u"We",   u"You",   u"They",   u"I",       u"My",    u"His",
    u"Her",  u"Its",     u"Our",   u"Your", u"Their", u"But",    u"And",     u"Or",    u"So",
    u"If",   u"When",    u"While", u"As",   u"After", u"Before", u"Because", u"Since", u"Although",
    u"Then", u"Now",     u"In",    u"On",   u"At",    u"For",    u"From",    u"With",  u"To",
    u"By",   u"What",    u"Who",   u"Why",  u"How",   u"Where",  u"Which",   u"No",    u"Not",
    u"Yes",  u"However", u"Some",  u"Many", u"Most",  u"All",    u"Each",    u"Every", u"One",
    u"Is",   u"Are",     u"Was",   u"Were", u"Do",    u"Does",   u"Did",     u"Can",   u"Will",
};

const Words speechVerbs{
    u"said",     u"says",     u"asked",     u"asks",    u"replied",  u"answered", u"cried",
    u"shouted",  u"yelled",   u"whispered", u"added",   u"muttered", u"murmured", u"exclaimed",
    u"thought",  u"wondered", u"screamed",  u"laughed", u"sighed",   u"called",   u"demanded",
    u"insisted", u"told",     u"continued", u"snapped", u"gasped",   u"roared",   u"begged",
};

bool isCapital(char16_t unit) {
    return unit >= u'A' && unit <= u'Z';
}

/// "U.S." or "J.R.R.": capitals with a full stop behind each.
bool isDottedCapitals(std::u16string_view word) {
    if (word.size() < 4 || word.size() % 2 != 0) return false;
    for (std::size_t i = 0; i < word.size(); i += 2)
        if (!isCapital(word[i]) || word[i + 1] != u'.') return false;
    return true;
}

/// "J." but not the pronoun "I.".
bool isInitial(std::u16string_view word) {
    return word.size() == 2 && isCapital(word[0]) && word[0] != u'I' && word[1] == u'.';
}

} // namespace

Abbreviation abbreviation(std::u16string_view word) {
    if (continuing.contains(word)) return Abbreviation::continues;
    if (numbered.contains(word)) return Abbreviation::beforeNumber;
    if (ambiguous.contains(word) || isDottedCapitals(word) || isInitial(word))
        return Abbreviation::unlessOpener;
    return Abbreviation::none;
}

bool isSentenceOpener(std::u16string_view word) {
    return openers.contains(word);
}

bool isSpeechVerb(std::u16string_view word) {
    return speechVerbs.contains(word);
}

} // namespace tavik
