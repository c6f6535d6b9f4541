#include "OffloadKit/Proof/MHLDocuments.h"
#include "OffloadKit/Proof/MHLHistory.h"
#include "tests/OffloadKit/OffloadFixture.h"

#include <random>

#include <sys/stat.h>

namespace OffloadKit::MHL {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Chains and generations that anybody may have written or damaged: never a crash, bounded memory,
/// and what was complete is used.
class History : public OffloadFixture {
 protected:
  std::vector<ChainEntry> chainOf(const std::string& text) {
    writeFile(card_ / "ascmhl_chain.xml", text);
    return readChain(fileSystem_, card_);
  }
  std::vector<bool> knownIn(const std::string& generation) {
    writeFile(card_ / "list.mhl", generation);
    return knownRows(fileSystem_, card_, {{1, "list.mhl", ""}}, {row("a"), row("b")});
  }
  static Entry row(const std::string& path) { return {path, 0, {}, ""}; }
};

const ChainEntry kFirst{1, "one.mhl", "c4A"};
const std::string kFirstText =
    "<hashlist sequencenr=\"1\"><path> one.mhl\n</path><c4>c4A</c4></hashlist>";

TEST_F(History, readsAChainAsFarAsItIsComplete) {
  EXPECT_THAT(readChain(fileSystem_, card_), IsEmpty());
  EXPECT_THAT(chainOf(""), IsEmpty());
  EXPECT_THAT(chainOf("<d>" + kFirstText + "<hashlist sequencenr='2'><path>two"),
              ElementsAre(kFirst));
  EXPECT_THAT(chainOf("<d>" + kFirstText + "</wrong>" + kFirstText), ElementsAre(kFirst));
  EXPECT_THAT(chainOf("<d>" + kFirstText + "\x01" + kFirstText), ElementsAre(kFirst));
  EXPECT_THAT(chainOf("<d>" + kFirstText + "&nbsp;" + kFirstText), ElementsAre(kFirst));
  EXPECT_THAT(chainOf("<?xml version=\"1.0\" encoding=\"made-up\"?><d>" + kFirstText), IsEmpty());
  EXPECT_THAT(chainOf(pattern(100'000)), IsEmpty());
  // Words that only look like the ones that count.
  EXPECT_THAT(chainOf("<d><x:hashlist xmlns:x='u' sequencenr='1'/><path>p</path></d>"), IsEmpty());
}

TEST_F(History, survivesEveryTruncationAndRandomDamage) {
  const std::string whole = chainDocument({kFirst, {2, "two & <three>", "c4B"}});
  for (std::size_t length = 0; length <= whole.size(); ++length) {
    EXPECT_LE(chainOf(whole.substr(0, length)).size(), 2U);
  }
  std::minstd_rand random(7);
  for (int round = 0; round < 300; ++round) {
    std::string damaged = whole;
    for (int i = 0; i < 3; ++i) damaged[random() % damaged.size()] = static_cast<char>(random());
    EXPECT_LE(chainOf(damaged).size(), 3U);
    knownIn(damaged);
  }
}

TEST_F(History, takesNoEntitiesAndNoEndlessTags) {
  std::string bomb = "<!DOCTYPE d [<!ENTITY a \"aaaaaaaaaa\">";
  for (char c = 'b'; c < 'l'; ++c) {
    bomb += std::string("<!ENTITY ") + c + " \"";
    for (int i = 0; i < 10; ++i) bomb += std::string("&") + static_cast<char>(c - 1) + ";";
    bomb += "\">";
  }
  EXPECT_THAT(chainOf(bomb + "]><d>" + kFirstText + "&k;</d>"), IsEmpty());

  const std::string nothing(40'000'000, 'x');
  EXPECT_THAT(chainOf("<d>" + kFirstText + "<path a='" + nothing), ElementsAre(kFirst));
  EXPECT_THAT(chainOf("<d>" + kFirstText + nothing), ElementsAre(kFirst));
  EXPECT_THAT(knownIn("<h><hash><path>a</path></hash><!--" + nothing), ElementsAre(true, false));
}

TEST_F(History, takesNoEndlessNestingNamesOrTrimming) {
  const auto times = [](std::size_t count, const std::string& text) {
    std::string all;
    for (std::size_t i = 0; i < count; ++i) all += text;
    return all;
  };
  const std::string file = "<hash><path>a</path></hash>";
  EXPECT_THAT(knownIn("<h>" + times(50, "<x>") + file), ElementsAre(true, false));
  EXPECT_THAT(knownIn("<h>" + times(2000, "<x>") + file), ElementsAre(false, false));
  EXPECT_THAT(chainOf("<d>" + times(2000, "<x>") + kFirstText), IsEmpty());
  std::string names;
  for (int i = 0; i < 20'000; ++i) names += "<x" + std::to_string(i) + "/>";
  EXPECT_THAT(knownIn("<h>" + names + file), ElementsAre(false, false));
  EXPECT_THAT(knownIn("<h>" + times(20'000, "<x y='' z=''/>") + file), ElementsAre(true, false));
  // A text belongs to the tag before it alone, so that no end of an element looks at it again.
  EXPECT_THAT(knownIn("<h><hash><path><x>a</x></path></hash></h>"), ElementsAre(false, false));
}

TEST_F(History, writesAChainThatReadsTheSameWhateverItsEntriesHold) {
  const std::vector<ChainEntry> chain = {{-3, "cr\rlf\n\"<&>'", "</c4></hashlist><c4>&amp;"},
                                         {9, "", ""}};
  EXPECT_EQ(chainOf(chainDocument(chain)), chain);
}

TEST_F(History, findsPathsOfFilesOnlyAndAsFarAsTheListIsComplete) {
  EXPECT_THAT(knownIn("<h><path>a</path><hash><path>b\n</path></hash></h>"),
              ElementsAre(false, true));
  EXPECT_THAT(knownIn("<h><hash><path>a</path></hash><hash><path>b"), ElementsAre(true, false));
  EXPECT_THAT(knownIn("<h><hash><path>&#97;</path></hash></h>"), ElementsAre(true, false));
}

TEST_F(History, readsNothingButPlainFilesBesideTheChain) {
  const std::string list = "<h><hash><path>a</path></hash></h>";
  writeFile(folder_.path() / "outside.mhl", list);
  writeFile(card_ / "sub/list.mhl", list);
  std::filesystem::create_symlink("../outside.mhl", card_ / "link.mhl");
  ASSERT_EQ(mkfifo((card_ / "pipe.mhl").c_str(), 0600), 0);
  std::vector<ChainEntry> chain;
  for (const std::string& name :
       {std::string("../outside.mhl"), (folder_.path() / "outside.mhl").native(),
        std::string("sub/list.mhl"), std::string("link.mhl"), std::string("pipe.mhl"),
        std::string("/dev/zero"), std::string(".."), std::string(), std::string("missing")}) {
    chain.push_back({1, name, ""});
  }
  EXPECT_THAT(knownRows(fileSystem_, card_, chain, {row("a")}), ElementsAre(false));
  writeFile(card_ / "list.mhl", list);
  chain.push_back({1, "list.mhl", ""});
  EXPECT_THAT(knownRows(fileSystem_, card_, chain, {row("a")}), ElementsAre(true));
}

}  // namespace
}  // namespace OffloadKit::MHL
