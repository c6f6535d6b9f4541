#include "OffloadKit/Copying/CardImager.h"
#include "PlatformKit/Testing/ManualClock.h"
#include "tests/OffloadKit/OffloadFixture.h"
#include "tests/torture/PassThrough.h"

#include <cerrno>
#include <functional>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/un.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace OffloadKit {
namespace {

namespace fs = std::filesystem;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

void makeSocket(const Path& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  ASSERT_LT(path.native().size(), sizeof address.sun_path);
  path.native().copy(address.sun_path, sizeof address.sun_path - 1);
  const PlatformKit::UniqueFd socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  ASSERT_EQ(bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
}

void makePipe(const Path& path) {
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
}

// A device without end; a pipe where only the administrator can make one.
void makeDevice(const Path& path) {
  if (mknod(path.c_str(), S_IFCHR | 0600, makedev(1, 5)) != 0) makePipe(path);
}

/// Somebody has prepared a drive, or the card, so that a run would reach what lies beside them.
class Hostile : public OffloadFixture {
 protected:
  Hostile() {
    writeFile(outside_ / "precious", "precious");
    writeFile(outside_ / "ascmhl_chain.xml", "their chain");
    writeFile(outside_ / ".list.zmpart", "their list");
    before_ = stateOf(outside_);
  }

  OffloadResult runAt(const OffloadPlan& plan) {
    return OffloadEngine({fileSystem_, volumes_, now_}, rawDeviceAccess_)
        .run(plan, [](const OffloadProgress&) {});
  }

  OffloadPlan planWithImage() {
    rawDevices_.add("/dev/card", pattern(kChunk));
    OffloadPlan wanted = plan();
    wanted.cardImage = CardImageRequest{"/dev/card", 0, kChunk};
    return wanted;
  }

  static std::vector<std::string> stateOf(const Path& folder) {
    std::vector<std::string> state;
    for (const std::string& item : tree(folder)) {
      struct stat status {};
      EXPECT_EQ(lstat((folder / item).c_str(), &status), 0);
      state.push_back(item + " " + std::to_string(status.st_mode) + " " +
                      std::to_string(status.st_mtim.tv_nsec) + " " +
                      (item.ends_with('/') ? "" : readFile(folder / item)));
    }
    return state;
  }

  void expectOutsideUntouched() const { EXPECT_EQ(stateOf(outside_), before_); }

  const Path outside_ = folder_.path() / "outside";
  std::vector<std::string> before_;
  PlatformKit::Testing::ManualClock now_{PlatformKit::Date(std::chrono::seconds(1'791'376'325))};
};

TEST_F(Hostile, aDriveCannotLeadARunOutOfItsFolder) {
  addFile("a", pattern(1000));
  addFile("sub/b", pattern(1000));
  const std::string image = CardImager::fileName("A001", now_.now());
  const std::string list = ".list.zmpart";
  const auto linkTo = [this](const char* target) {
    return [to = outside_ / target](const Path& at) { fs::create_symlink(to, at); };
  };
  const auto folder = [](const Path& at) { fs::create_directory(at); };
  struct Trap {
    std::string at;
    std::function<void(const Path&)> make;
    std::vector<std::string> lost;  // of a, sub/b, image, report and list
  };
  const std::vector<Trap> traps = {
      {"a", linkTo("precious"), {"a"}},
      {"a", linkTo("missing"), {"a"}},
      {"a", makePipe, {"a"}},
      {".a.zmpart", linkTo("precious"), {}},
      {".a.zmpart", linkTo("missing"), {}},
      {".a.zmpart", makePipe, {}},
      {".a.zmpart", makeSocket, {}},
      {".a.zmpart", makeDevice, {}},
      {".a.zmpart", folder, {"a"}},
      {"sub", linkTo(""), {"sub/b"}},
      {"sub", linkTo("missing"), {"sub/b"}},
      {"sub", makePipe, {"sub/b"}},
      {"ascmhl", linkTo(""), {"list"}},
      {"ascmhl", linkTo("missing"), {"list"}},
      {"ascmhl", makePipe, {"list"}},
      {"ascmhl/ascmhl_chain.xml", linkTo("ascmhl_chain.xml"), {}},
      {"ascmhl/ascmhl_chain.xml", makePipe, {}},
      {"ascmhl/ascmhl_chain.xml", makeDevice, {}},
      {"ascmhl/ascmhl_chain.xml", folder, {"list"}},
      {"ascmhl/" + list, linkTo("precious"), {}},
      {"ascmhl/" + list, makeSocket, {}},
      {".Offload Report.zmpart", linkTo("precious"), {}},
      {".Offload Report.zmpart", folder, {"report"}},
      {"Offload Report other.html", linkTo("precious"), {}},
      {"Offload Report other.html", makePipe, {}},
      {"Offload Report other.html", makeDevice, {}},
      {"Card Image", linkTo(""), {"image"}},
      {"Card Image", linkTo("missing"), {"image"}},
      {"Card Image/" + image, linkTo("precious"), {"image"}},
      {"Card Image/" + image, linkTo("missing"), {"image"}},
      {"Card Image/." + image + ".zmpart", linkTo("precious"), {}},
      {"Card Image/." + image + ".zmpart", makePipe, {}},
  };
  for (const Trap& trap : traps) {
    SCOPED_TRACE(trap.at);
    for (int number = 1; number <= 2; ++number) fs::remove_all(copies(number));
    const Path at = copies(1) / trap.at;
    fs::create_directories(at.parent_path());
    trap.make(at);
    const auto result = runAt(planWithImage());
    std::vector<std::string> lost;
    if (!result.files[0].outcomes[0].isVerified()) lost.emplace_back("a");
    if (!result.files[1].outcomes[0].isVerified()) lost.emplace_back("sub/b");
    if (!result.cardImage->outcome.isVerified()) lost.emplace_back("image");
    if (result.reports.size() < 2) lost.emplace_back("report");
    if (result.mhlFiles.size() < 2) lost.emplace_back("list");
    EXPECT_EQ(lost, trap.lost);
    EXPECT_EQ(result.verifiedCount(1), 2U);
    expectOutsideUntouched();
  }
}

TEST_F(Hostile, aFolderThatBecomesALinkUnderWayIsNotFollowed) {
  // By the next file, or between the verified copy and its name.
  for (const char* moment : {"a", "sub/c"}) {
    fs::remove_all(copies(1));
    fs::remove_all(folder_.path() / "aside");
    for (const char* name : {"a", "sub/b", "sub/c"}) addFile(name, pattern(5000));
    OffloadPlan wanted = plan(1);
    wanted.chunkSize = 4096;  // one file after the other
    const auto swap = [&] {
      if (fs::exists(folder_.path() / "aside")) return;
      fs::create_directories(copies(1) / "sub");
      fs::rename(copies(1) / "sub", folder_.path() / "aside");
      fs::create_directory_symlink(outside_, copies(1) / "sub");
    };
    OffloadEngine engine({fileSystem_, volumes_, now_}, rawDeviceAccess_);
    engine.afterWrite = [&](const Path& copy) {
      const std::string name = std::string(".") + Path(moment).filename().native() + ".zmpart";
      if (copy.filename() == name) swap();
    };
    const auto result = engine.run(wanted, [](const OffloadProgress&) {});
    EXPECT_TRUE(result.files[0].outcomes[0].isVerified());
    EXPECT_FALSE(result.files[2].outcomes[0].isVerified());
    expectOutsideUntouched();
  }
}

TEST_F(Hostile, aDestinationThatBecomesALinkUnderWayIsGivenUp) {
  for (const char* name : {"a", "b", "c"}) addFile(name, pattern(5000));
  OffloadPlan wanted = plan(2);
  wanted.chunkSize = 4096;  // one file after the other
  OffloadEngine engine(system_, rawDeviceAccess_);
  engine.afterWrite = [&](const Path& copy) {
    if (copy != copies(1) / ".a.zmpart") return;
    fs::rename(copies(1), folder_.path() / "aside");
    fs::create_directory_symlink(outside_, copies(1));
  };
  const auto result = engine.run(wanted, [](const OffloadProgress&) {});
  EXPECT_EQ(result.verifiedCount(0), 0U);
  EXPECT_EQ(result.verifiedCount(1), 3U);
  expectOutsideUntouched();
}

TEST_F(Hostile, onlyTheRunsOwnTemporaryCopyIsRemoved) {
  writeFile(outside_ / ".b.zmpart", "precious");
  before_ = stateOf(outside_);
  addFile("sub/b", pattern(5000));
  OffloadEngine engine(system_, rawDeviceAccess_);
  engine.afterWrite = [&](const Path&) {
    fs::rename(copies(1) / "sub", folder_.path() / "aside");
    fs::create_directory_symlink(outside_, copies(1) / "sub");
  };
  EXPECT_FALSE(engine.run(plan(1), [](const OffloadProgress&) {}).allVerified());
  expectOutsideUntouched();
}

TEST_F(Hostile, aCardBringsOnlyTheBytesOfItsRegularFiles) {
  addFile("a", pattern(1000));
  addFile(".a.zmpart", "their own");
  addFile("Offload Report 2026-10-07 1232.html", "no report");
  addFile("ascmhl/0001.mhl", "no list");
  addFile("escape\x1b[2J\n", "control");
  addFile("program", "#!");
  fs::create_hard_link(card_ / "program", card_ / "second");
  ASSERT_EQ(chmod((card_ / "program").c_str(), 06777), 0);
  const bool attributes = setxattr((card_ / "program").c_str(), "user.theirs", "x", 1, 0) == 0;
  fs::create_symlink(outside_ / "precious", card_ / "link");
  fs::create_directory_symlink(outside_, card_ / "way");
  fs::create_directory_symlink(".", card_ / "loop");
  fs::create_symlink("/dev/zero", card_ / "endless");
  makePipe(card_ / "pipe");
  makeSocket(card_ / "socket");
  makeDevice(card_ / "device");
  const auto before = stateOf(outside_);
  const auto result = runAt(plan(1));
  EXPECT_TRUE(result.allVerified());
  EXPECT_THAT(tree(copies(1)),
              UnorderedElementsAre(".a.zmpart", "Offload Report 2026-10-07 1232.html",
                                   result.reports.at(0).filename().native(), "a", "ascmhl/",
                                   "ascmhl/ascmhl_chain.xml",
                                   "ascmhl/" + result.mhlFiles.at(0).filename().native(),
                                   "escape\x1b[2J\n", "program", "second"));
  EXPECT_EQ(readFile(copies(1) / "Offload Report 2026-10-07 1232.html"), "no report");
  struct stat copy {};
  ASSERT_EQ(stat((copies(1) / "program").c_str(), &copy), 0);
  EXPECT_EQ(copy.st_mode & 07133, 0U) << "permissions come from this computer, not from the card";
  EXPECT_EQ(copy.st_nlink, 1U);
  if (attributes) {
    EXPECT_EQ(listxattr((copies(1) / "program").c_str(), nullptr, 0), 0);
  }
  EXPECT_EQ(stateOf(outside_), before);
}

/// A card whose driver believes what a damaged folder says.
class DamagedCard final : public Torture::PassThrough {
 public:
  DamagedCard(PlatformKit::FileSystem& below, Path card, std::vector<std::string> names)
      : PassThrough(below), card_(std::move(card)), names_(std::move(names)) {}

  Result<PlatformKit::FolderListing> list(const Path& folder) override {
    auto listed = below_.list(folder);
    if (folder != card_ || !listed.ok()) return listed;
    for (const std::string& name : names_) {
      listed.value().entries.push_back({name, below_.status(card_ / "a")});
    }
    return listed;
  }

 private:
  const Path card_;
  const std::vector<std::string> names_;
};

TEST_F(Hostile, namesThatAreNoneLeadNowhere) {
  addFile("a", pattern(1000));
  const std::vector<std::string> names = {
      "..", ".", "", "../../../outside/evil", (outside_ / "evil").native(), "sub/../../evil"};
  DamagedCard damaged(fileSystem_, card_, names);
  const auto result = OffloadEngine({damaged, volumes_, now_}, rawDeviceAccess_)
                          .run(plan(1), [](const OffloadProgress&) {});
  EXPECT_EQ(result.files.size(), 1U);
  std::vector<std::string> told;
  for (const UnreadableItem& item : result.unreadable) told.push_back(item.relativePath);
  EXPECT_EQ(told, names);
  EXPECT_THAT(copiedTree(1), ElementsAre("a"));
  expectOutsideUntouched();
}

/// A drive that does not tell "ASCMHL" from "ascmhl".
class FoldingDrive final : public Torture::PassThrough {
 public:
  FoldingDrive(PlatformKit::FileSystem& below, Path drive)
      : PassThrough(below), drive_(std::move(drive)) {}

  Result<PlatformKit::ItemStatus> status(const Path& path) override {
    return below_.status(folded(path));
  }
  Result<Path> resolve(const Path& path) override { return below_.resolve(folded(path)); }
  Result<std::unique_ptr<PlatformKit::ReadableFile>> openForReading(
      const Path& path, PlatformKit::ReadMode mode) override {
    return below_.openForReading(folded(path), mode);
  }
  Result<std::unique_ptr<PlatformKit::WritableFile>> createFile(const Path& path) override {
    return below_.createFile(folded(path));
  }
  int createFolder(const Path& path) override { return below_.createFolder(folded(path)); }
  int flushFolder(const Path& path) override { return below_.flushFolder(folded(path)); }
  int moveWithoutReplacing(const Path& from, const Path& to) override {
    return below_.moveWithoutReplacing(folded(from), folded(to));
  }

 private:
  [[nodiscard]] Path folded(const Path& path) const {
    std::string text = path.native();
    const auto at = text.find("ASCMHL");
    if (text.starts_with(drive_.native()) && at != std::string::npos) text.replace(at, 6, "ascmhl");
    return text;
  }
  const Path drive_;
};

TEST_F(Hostile, aHashListReplacesNoCopy) {
  addFile("ASCMHL/ascmhl_chain.xml", "their chain");
  FoldingDrive drives(fileSystem_, drive(1));
  const auto result = OffloadEngine({drives, volumes_, now_}, rawDeviceAccess_)
                          .run(plan(2), [](const OffloadProgress&) {});
  EXPECT_TRUE(result.allVerified());
  EXPECT_EQ(readFile(copies(1) / "ascmhl/ascmhl_chain.xml"), "their chain");
  EXPECT_EQ(result.mhlFiles.size(), 1U) << "the second drive tells the two apart";
}

}  // namespace
}  // namespace OffloadKit
