#include "OffloadKit/Card/SourceScan.h"
#include "tests/OffloadKit/OffloadFixture.h"

#include <cerrno>

#include <sys/stat.h>

namespace OffloadKit {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

class Scan : public OffloadFixture {
 protected:
  std::vector<std::string> scannedPaths() {
    std::vector<std::string> paths;
    for (const auto& file : scan(system_, card_).files) paths.push_back(file.relativePath);
    return paths;
  }
};

TEST_F(Scan, listsFilesInTheOrderOfAFileBrowserWithTheirSizesAndDates) {
  for (const char* name :
       {"A10.MOV", "a2.MOV", "A1.MOV", ".hidden", "DCIM/100CANON/IMG_0001.CR3"}) {
    addFile(name, name);
  }
  EXPECT_THAT(scannedPaths(),
              ElementsAre(".hidden", "A1.MOV", "a2.MOV", "A10.MOV", "DCIM/100CANON/IMG_0001.CR3"));
  const auto files = scan(system_, card_).files;
  EXPECT_EQ(files[1].size, 6U);
  EXPECT_EQ(files[1].modified.time_since_epoch(), std::chrono::milliseconds(1'790'000'000'250));
}

TEST_F(Scan, leavesOutHousekeepingWithEverythingBelowIt) {
  for (const char* name :
       {".DS_Store", "._IMG_0001.JPG", ".Trashes/501/x.mov", "deep/down/ascmhl/0001.mhl",
        "System Volume Information/x", ".Spotlight-V100/x", ".fseventsd/x", ".TemporaryItems/x",
        ".DocumentRevisions-V100/x", "._folder/x"}) {
    addFile(name, "x");
  }
  EXPECT_THAT(scannedPaths(), IsEmpty());
  addFile("ASCMHL/kept", "x");
  addFile(".DS_Store2", "x");
  EXPECT_THAT(scannedPaths(), ElementsAre(".DS_Store2", "ASCMHL/kept"));
}

TEST_F(Scan, takesOnlyRegularFilesAndFollowsNoLinks) {
  addFile("real.mov", "x");
  std::filesystem::create_symlink("real.mov", card_ / "link.mov");
  std::filesystem::create_symlink("..", card_ / "loop");
  std::filesystem::create_symlink("nowhere", card_ / "dangling");
  ASSERT_EQ(mkfifo((card_ / "pipe").c_str(), 0600), 0);
  const SourceScan found = scan(system_, card_);
  ASSERT_EQ(found.files.size(), 1U);
  EXPECT_EQ(found.files[0].relativePath, "real.mov");
  EXPECT_THAT(found.unreadable, IsEmpty());
}

TEST_F(Scan, namesWhatItCouldNotReadAndGoesOn) {
  addFile("locked/a.mov", "x");
  addFile("broken.mov", "x");
  addFile("whole.mov", "x");
  fileSystem_.setScript([](const CallInfo& info) {
    const std::string name = info.path.filename();
    if (info.call == Call::list && name == "locked") return Intervention{EACCES};
    if (info.call == Call::entryStatus && name == "broken.mov") return Intervention{EIO};
    return Intervention{};
  });
  const SourceScan found = scan(system_, card_);
  ASSERT_EQ(found.files.size(), 1U);
  EXPECT_EQ(found.files[0].relativePath, "whole.mov");
  EXPECT_THAT(found.unreadable,
              UnorderedElementsAre(UnreadableItem{"locked", because("Permission denied")},
                                   UnreadableItem{"broken.mov", because("Input/output error")}));
}

TEST_F(Scan, keepsWhatAFolderGaveBeforeItBrokeOff) {
  for (const char* name : {"f/1", "f/2", "f/3"}) addFile(name, "x");
  fileSystem_.setScript([](const CallInfo& info) {
    Intervention intervention;
    if (info.call == Call::list && info.path.filename() == "f") intervention.limit = 2;
    return intervention;
  });
  const SourceScan found = scan(system_, card_);
  EXPECT_EQ(found.files.size(), 2U);
  EXPECT_THAT(found.unreadable, ElementsAre(UnreadableItem{"f", because("Input/output error")}));
}

TEST_F(Scan, refusesASourceThatCannotBeListed) {
  addFile("b.mov", "x");
  fileSystem_.setScript(FaultyFileSystem::failing(Call::list, "card", EIO));
  EXPECT_EQ(offloadErrorOf([&] { static_cast<void>(scan(system_, card_)); }),
            "The card couldn't be read: couldn't list its files");
}

TEST_F(Scan, goesAsDeepAsTheCardDoes) {
  std::string deep;
  for (int i = 0; i < 60; ++i) deep += "a-folder-with-a-rather-long-name/";
  addFile(deep + "file", "x");
  EXPECT_THAT(scannedPaths(), ElementsAre(deep + "file"));
}

}  // namespace
}  // namespace OffloadKit
