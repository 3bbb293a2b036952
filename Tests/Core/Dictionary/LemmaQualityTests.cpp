#include "Support/RealDictionary.h"

#include <gtest/gtest.h>

#include <sstream>

namespace tavik {
namespace {

/// Words with their base forms: "base:form,form  base:form". These were picked by hand.
constexpr const char* inflected = R"(
go:went,gone,goes,going  be:was,were,am,been,is  have:has,had  do:does,did,done  see:saw,seen
take:took,taken  give:gave,given  come:came  run:ran,running  eat:ate,eaten  drink:drank
sing:sang,sung  swim:swam  fly:flew,flown  know:knew  throw:thrown  grow:grew  blow:blew
draw:drew  write:wrote,written  break:broke,broken  speak:spoke  steal:stole  freeze:froze
choose:chose  wear:wore  tear:torn  buy:bought  bring:brought  catch:caught  teach:taught
think:thought  fight:fought  seek:sought  sleep:slept  keep:kept  leave:left  feel:felt
meet:met  lead:led  feed:fed  build:built  send:sent  spend:spent  lend:lent  lose:lost
hold:held  tell:told  sell:sold  stand:stood  understand:understood  make:made  pay:paid
say:said  lay:laid  lie:lain,lying  die:dying  hide:hid,hidden  bite:bitten  forget:forgotten
become:became  begin:began,begun  shake:shook  wake:woke  arise:arose  swear:swore  weave:wove
strike:struck  sweep:swept  bleed:bled  dig:dug  hang:hung  stick:stuck  slide:slid  weep:wept
bend:bent  burn:burnt  learn:learnt  dream:dreamt  spell:spelt
child:children  man:men  woman:women  foot:feet  tooth:teeth  goose:geese  mouse:mice  ox:oxen
life:lives  wife:wives  knife:knives  leave:leaves  wolf:wolves  shelf:shelves  loaf:loaves
half:halves  thief:thieves  potato:potatoes  hero:heroes  analysis:analyses  crisis:crises
thesis:theses  hypothesis:hypotheses  phenomenon:phenomena  criterion:criteria
bacterium:bacteria  fungus:fungi  cactus:cacti  nucleus:nuclei  stimulus:stimuli  alumnus:alumni
larva:larvae  vertebra:vertebrae  index:indices  matrix:matrices  appendix:appendices
parenthesis:parentheses  penny:pence  city:cities  country:countries  box:boxes  bus:buses
church:churches  wish:wishes  quiz:quizzes  study:studies  dumpling:dumplings
big:bigger,biggest  happy:happier,happiest  easy:easier  large:larger,largest  good:better,best
bad:worse,worst  far:further  fast:faster  thin:thinner  hot:hottest  pretty:prettier
simple:simplest  young:younger  few:fewer
stop:stopped,stopping  plan:planned  swim:swimming  get:getting  sit:sitting  begin:beginning
forget:forgetting  refer:referred  occur:occurred  prefer:preferred  admit:admitted
control:controlled  travel:travelled,traveled,travelling  cancel:cancelled  model:modelling
label:labelled  quarrel:quarrelled  visit:visited  open:opened  hope:hoping  hop:hopping
tap:tapping  strip:stripping  make:making  try:tried  carry:carries  play:played  agree:agreed
panic:panicked  mimic:mimicking
recognise:recognised  realise:realised  organise:organising  organize:organized  colour:colours
color:colors  favourite:favourites  honour:honoured  analyse:analysed  analyze:analyzed
centre:centres  theatre:theatres  defence:defences  licence:licences  practise:practised
catalogue:catalogues  programme:programmes  neighbour:neighbours
)";

/// Words that are their own base forms though many of them look inflected.
constexpr const char* ownBases = R"(
planning
labour grey judgement
news species series his bus this james thomas evening number thanks ground building wales
stamina dryer means physics mathematics politics always perhaps less its during according
including stranger corner bread speed need red bed hundred sacred naked wicked thing king spring
string morning nothing ceiling lens gas bias chaos atlas christmas glass boss process business
address virus focus status crisis analysis basis tennis paris texas charles barnes leeds weather
never other flower master interest forest honest modest harvest later media data wound
interested
)";

class LemmaQualityTest : public test::RealDictionaryTest {};

TEST_F(LemmaQualityTest, everyFormIsFiledUnderTheWordThatATeacherWouldName) {
    std::istringstream groups(inflected);
    for (std::string base; std::getline(groups >> std::ws, base, ':');) {
        std::string forms;
        groups >> forms;
        std::istringstream eachForm(forms);
        for (std::string form; std::getline(eachForm, form, ',');)
            EXPECT_EQ(dictionary->lemma(form), base) << form;
    }
}

TEST_F(LemmaQualityTest, wordsThatOnlyLookInflectedStayThemselves) {
    std::istringstream words(ownBases);
    for (std::string word; words >> word;)
        EXPECT_EQ(dictionary->lemma(word), word);
}

TEST_F(LemmaQualityTest, aPhraseIsFiledWithItsFirstWordReduced) {
    for (const auto& [phrase, base] :
         std::vector<std::pair<std::string, std::string>>{{"gave up", "give up"},
                                                          {"took off", "take off"},
                                                          {"looking forward to", "look forward to"},
                                                          {"made up", "make up"},
                                                          {"turning point", "turning point"},
                                                          {"United States", "united states"},
                                                          {"left wing", "left wing"},
                                                          {"according to", "according to"}})
        EXPECT_EQ(dictionary->lemma(phrase), base);
}

} // namespace
} // namespace tavik
