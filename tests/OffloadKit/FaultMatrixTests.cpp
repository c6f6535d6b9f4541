#include "OffloadKit/Copying/Lane.h"
#include "OffloadKit/Records/OffloadError.h"
#include "PlatformKit/Testing/ManualClock.h"
#include "tests/OffloadKit/OffloadFixture.h"
#include "tests/torture/PassThrough.h"

#include <cerrno>
#include <fstream>
#include <map>
#include <mutex>
#include <regex>
#include <set>

namespace OffloadKit {
namespace {

using PlatformKit::WritableFile;
using ::testing::IsEmpty;

/// What was on the drives before the run, or what they are.
enum class Before { nothing, leftover, copies, fat };

/// What a call that fails on some drives, or on the card, costs there.
enum class Cost {
  nothing,
  file,      ///< the file, with the error's sentence
  content,   ///< as `file`; an error that ends a drive ends this one
  named,     ///< as `content`, but the copy stays
  name,      ///< as `file`, but the copy stays; a folder that may not be opened costs nothing
  allNames,  ///< as `name`, for every file
  proof,     ///< as `allNames`, where the error means that the drive takes no changes any more
  readBack,  ///< the file, which could not be read back
  taken,     ///< the file, whose name is taken
  cardFile,  ///< the file, on every drive
  unread,    ///< the place is named as unreadable and the file is not part of the run
  report,
  hashList,
  start,  ///< the run does not start
};

/// A call that fails at a place below the card or below the folders of the copies.
struct Row {
  Call call;
  const char* place;
  Cost cost;
  Before before = Before::nothing;
};

constexpr const char* kDrive = "../..";  // seen from a folder of copies
constexpr const char* kLeftover = "b/.b.zmpart";

constexpr Row kOnDrives[] = {
    {Call::status, "b/b", Cost::nothing},
    {Call::status, "b/b", Cost::taken, Before::copies},
    {Call::status, kLeftover, Cost::file},
    {Call::status, kDrive, Cost::start},
    {Call::resolve, "", Cost::nothing},
    {Call::openFolder, "", Cost::start},
    {Call::list, "", Cost::nothing},
    {Call::entryStatus, "Offload Report", Cost::nothing},
    {Call::openForReading, kLeftover, Cost::readBack},
    {Call::openForReading, "b/b", Cost::readBack, Before::copies},
    {Call::openForReading, "ascmhl", Cost::nothing, Before::copies},
    {Call::read, kLeftover, Cost::readBack},
    {Call::read, "b/b", Cost::readBack, Before::copies},
    {Call::flushRead, kLeftover, Cost::named, Before::fat},
    {Call::createFile, kLeftover, Cost::file},
    {Call::createFile, ".Offload.zmpart", Cost::proof},
    {Call::createFile, ".Offload Report", Cost::report},
    {Call::createFile, "ascmhl", Cost::hashList},
    {Call::identity, kLeftover, Cost::file},
    {Call::write, kLeftover, Cost::content},
    {Call::write, ".Offload Report", Cost::report},
    {Call::write, "ascmhl", Cost::hashList},
    {Call::startWriteback, kLeftover, Cost::content},
    {Call::finishWriteback, kLeftover, Cost::content},
    {Call::setFileDates, kLeftover, Cost::nothing},
    {Call::setDates, "b/", Cost::nothing},
    {Call::flush, kLeftover, Cost::content},
    {Call::flush, ".Offload Report", Cost::report},
    {Call::flush, "ascmhl", Cost::hashList},
    {Call::createFolder, "b", Cost::file},
    {Call::createFolder, "ascmhl", Cost::hashList},
    {Call::createFolder, "", Cost::start},
    {Call::move, "b/b", Cost::file},
    {Call::move, "Offload Report", Cost::report},
    {Call::move, "ascmhl", Cost::hashList},
    {Call::moveReplacing, "ascmhl", Cost::hashList},
    {Call::remove, kLeftover, Cost::file, Before::leftover},
    {Call::lockFolder, "", Cost::nothing},
    {Call::flushFolder, "b", Cost::name},
    {Call::flushFolder, "ascmhl", Cost::hashList},
    {Call::flushVolume, "", Cost::allNames, Before::copies},
    {Call::checkWritable, kDrive, Cost::start},
};

constexpr Row kOnTheCard[] = {
    {Call::status, "b/b", Cost::nothing, Before::copies},
    {Call::resolve, "", Cost::nothing},
    {Call::openFolder, "", Cost::start},
    {Call::list, "b", Cost::unread},
    {Call::list, "", Cost::start},
    {Call::entryStatus, "b/b", Cost::unread},
    {Call::openForReading, "b/b", Cost::cardFile},
    {Call::read, "b/b", Cost::cardFile},
};

constexpr int kErrors[] = {EINTR, EIO, ENXIO, ENODEV, ENOSPC, EACCES, EROFS, EFBIG, EMFILE, EDQUOT};

/// A function of FileSystem and of the files it opens; entryStatus is part of what `list` answers.
const std::map<Call, std::string> kFunctions = {
    {Call::status, "status"},
    {Call::resolve, "resolve"},
    {Call::openFolder, "openFolder"},
    {Call::list, "list"},
    {Call::openForReading, "openForReading"},
    {Call::read, "readAt"},
    {Call::flushRead, "flush"},
    {Call::createFile, "createFile"},
    {Call::identity, "identity"},
    {Call::write, "write"},
    {Call::startWriteback, "startWriteback"},
    {Call::finishWriteback, "finishWriteback"},
    {Call::setFileDates, "setDates"},
    {Call::flush, "flush"},
    {Call::createFolder, "createFolder"},
    {Call::move, "moveWithoutReplacing"},
    {Call::moveReplacing, "moveReplacing"},
    {Call::remove, "removeFile"},
    {Call::setDates, "setDates"},
    {Call::lockFolder, "lockFolder"},
    {Call::flushFolder, "flushFolder"},
    {Call::flushVolume, "flushVolume"},
    {Call::checkWritable, "checkWritable"},
};

std::size_t openDescriptors() {
  const std::filesystem::directory_iterator numbers("/proc/self/fd");
  return static_cast<std::size_t>(std::distance(begin(numbers), end(numbers)));
}

/// Every call of the seam, failing with every error for the middle one of three files: on the card,
/// on the second of three drives, or on all drives.
class FaultMatrix : public OffloadFixture {
 protected:
  using Names = std::set<std::string>;
  enum class Size { streamed, grouped };

  struct Cell {
    Row row;
    bool onTheCard;
    std::set<int> drives;  // on which it fails, or costs
    Size size;
    int error;  // that the engine learns of
    Intervention intervention;
    bool once = false;
  };

  // Some thousand runs flush their copies, which takes a disk too long.
  static void SetUpTestSuite() {
    if (std::filesystem::exists("/dev/shm")) setenv("TMPDIR", "/dev/shm", 0);
  }

  static constexpr const char* kNames[] = {"a", "b/b", "c"};

  void prepare(Size size, Before before) {
    fileSystem_.setScript({});
    std::filesystem::remove_all(card_);
    for (const char* name : kNames) addFile(name, pattern(size == Size::streamed ? 16384 : 5000));
    for (int number = 1; number <= 3; ++number) {
      std::filesystem::remove_all(copies(number).parent_path());
      setFat(number, before == Before::fat);
      if (before == Before::leftover) writeFile(copies(number) / kLeftover, "left over");
    }
    if (before == Before::copies) static_cast<void>(run(planOf(size)));
  }

  OffloadPlan planOf(Size size) const {
    OffloadPlan wanted = plan(3);
    // Four chunks, so that the third one is beyond the write-back window; or one for all files.
    if (size == Size::streamed) wanted.chunkSize = 4096;
    return wanted;
  }

  static std::string placeIn(const Path& top, std::string_view place) {
    return place.empty() ? top.native() : (top / place).native();
  }

  void failFor(const Cell& cell) {
    std::vector<std::string> places;
    if (cell.onTheCard) places.push_back(placeIn(card_, cell.row.place));
    for (const int number : cell.drives) {
      if (cell.onTheCard) break;
      const bool top = cell.row.place == std::string_view(kDrive);
      places.push_back(top ? drive(number).native() : placeIn(copies(number), cell.row.place));
    }
    hits_ = 0;
    fileSystem_.setScript([this, cell, places = std::move(places)](const CallInfo& info) {
      const bool same = info.call == cell.row.call;
      // Dates are set again only where they could not be set before.
      const bool before = cell.row.call == Call::setDates && info.call == Call::setFileDates;
      const auto isAbove = [&](const std::string& place) {
        return info.path.native().starts_with(place);
      };
      Intervention intervention;
      if (!(same || before) || std::none_of(places.begin(), places.end(), isAbove)) {
        return intervention;
      }
      if (same && hits_++ > 0 && cell.once) return intervention;
      return cell.intervention;
    });
  }

  static bool isDead(int error) {
    return error == EROFS || (endsTheDrive(error) && error != ENOSPC);
  }

  // Why a file is not to be verified on a drive; none: it is.
  static std::optional<Reason> failureOf(const Cell& cell, std::size_t file, int number) {
    const bool middle = file == 1;
    if (!cell.drives.contains(number)) return {};
    const auto when = [](bool fails, Reason reason) {
      return fails ? std::optional(std::move(reason)) : std::nullopt;
    };
    const auto drive = Reason::ofDrive(cell.error);
    switch (cell.row.cost) {
      case Cost::file:
        return when(middle, drive);
      case Cost::content:
      case Cost::named:
        return when(middle || (file == 2 && endsTheDrive(cell.error)), drive);
      case Cost::name:
        // A long file is flushed beside the names before, which give the drive up.
        if (file == 2 && cell.size == Size::grouped) return {};
        return when((middle && cell.error != EACCES) || (file == 2 && endsTheDrive(cell.error)),
                    drive);
      case Cost::allNames:
        return when(cell.error != EACCES, drive);
      case Cost::proof:
        // The name of the first of long files is proven by the third.
        return when(isDead(cell.error) && (file > 0 || cell.size == Size::grouped), drive);
      case Cost::readBack:
        return when(middle, Reason(Reason::Kind::copyUnreadable));
      case Cost::taken:
        return when(middle, Reason::ofDrive(EEXIST));
      case Cost::cardFile:
        return when(middle, because("The card couldn't be read: b/b: " +
                                    Reason::ofSystem(cell.error).english()));
      default:
        return {};
    }
  }

  [[nodiscard]] std::string refusalOf(const Cell& cell) const {
    if (cell.row.cost != Cost::start) return {};
    if (cell.onTheCard) {
      return OffloadError::sourceUnreadable(Reason(Reason::Kind::filesNotListed)).what();
    }
    const std::string name = "T" + std::to_string(*cell.drives.begin()) + " (A001)";
    return OffloadError::destinationUnavailable(name).what();
  }

  // Everything that is not as it should be after a run in which the cell's call fails.
  Names faultsOf(const Cell& cell, PlatformKit::FileSystem& engineSees) {
    Names faults;
    const auto expect = [&](bool holds, const std::string& fault) {
      if (!holds) faults.insert(fault);
    };
    prepare(cell.size, cell.row.before);
    const auto cardBefore = cardState();
    const std::size_t descriptorsBefore = openDescriptors();
    failFor(cell);
    std::optional<OffloadResult> result;
    std::string refusal;
    try {
      now_.advance(std::chrono::minutes(1));
      result = OffloadEngine({engineSees, volumes_, now_}, rawDeviceAccess_)
                   .run(planOf(cell.size), [](const OffloadProgress&) {});
    } catch (const OffloadError& error) {
      refusal = error.what();
    }
    // Nothing is written behind in a file of one chunk.
    const bool never = cell.size == Size::grouped && (cell.row.call == Call::startWriteback ||
                                                      cell.row.call == Call::finishWriteback);
    expect((hits_ > 0) != never, "the call was made " + std::to_string(hits_) + " times");
    expect(openDescriptors() == descriptorsBefore, "a descriptor is left open");
    expect(cardState() == cardBefore, "the card was changed");
    expect(refusal == refusalOf(cell), "refused with: " + refusal);
    for (int number = 1; number <= 3; ++number) {
      const bool stays = cell.row.before == Before::leftover && cell.drives.contains(number);
      for (const std::string& item : tree(drive(number))) {
        expect(!item.ends_with(".zmpart") || stays, "left over: " + item);
      }
      if (result && !never) compareDrive(cell, *result, number, expect);
    }
    if (result) compareRun(cell, *result, expect);
    return faults;
  }

  template <class Expect>
  void compareRun(const Cell& cell, const OffloadResult& result, const Expect& expect) {
    std::vector<UnreadableItem> unread;
    if (cell.row.cost == Cost::unread)
      unread.push_back({cell.row.place, Reason::ofSystem(cell.error)});
    expect(result.unreadable == unread, "what could not be read is told wrongly");
    // A folder that may not be opened cannot be flushed, which is no fault.
    const bool harmless = cell.row.call == Call::flushFolder && cell.error == EACCES;
    const auto missing = [&](Cost record) {
      std::size_t count = cell.row.cost == record && !harmless ? cell.drives.size() : 0;
      for (std::size_t i = 0; i < 3; ++i) {
        const auto error = result.destinationErrors.find(i);
        const bool gone =
            error != result.destinationErrors.end() && error->second == Reason::ofDrive(ENODEV);
        const bool unproven = cell.row.cost == Cost::proof && isDead(cell.error) &&
                              cell.drives.contains(static_cast<int>(i) + 1);
        if (gone || unproven || result.verifiedCount(i) == 0) ++count;
      }
      return count;
    };
    const std::size_t told = result.reports.size() + result.mhlFiles.size();
    std::size_t due = 0;
    for (std::size_t i = 0; i < 3; ++i) due += result.verifiedCount(i) > 0 ? 2U : 0U;
    expect(told + result.missingRecords.size() == due, "a record is missing in silence");
    expect(result.reports.size() + missing(Cost::report) == 3, "reports are missing");
    expect(result.mhlFiles.size() + missing(Cost::hashList) == 3, "hash lists are missing");
  }

  template <class Expect>
  void compareDrive(const Cell& cell, const OffloadResult& result, int number,
                    const Expect& expect) {
    const auto drive = static_cast<std::size_t>(number - 1);
    const std::string at = " on drive " + std::to_string(number);
    const bool givesUp = cell.row.cost == Cost::content || cell.row.cost == Cost::named ||
                         cell.row.cost == Cost::name || cell.row.cost == Cost::allNames ||
                         (cell.row.cost == Cost::proof && isDead(cell.error));
    const bool givenUp = givesUp && cell.drives.contains(number) && endsTheDrive(cell.error);
    const auto told = result.destinationErrors.find(drive);
    expect((told != result.destinationErrors.end()) == givenUp, "given up wrongly" + at);
    if (givenUp && told != result.destinationErrors.end()) {
      expect(told->second == Reason::ofDrive(cell.error),
             "given up with: " + told->second.english() + at);
    }
    for (std::size_t file = 0; file < 3; ++file) {
      const std::string name = kNames[file];
      const auto isIt = [&](const OffloadedFile& one) { return one.file.relativePath == name; };
      const auto found = std::find_if(result.files.begin(), result.files.end(), isIt);
      const bool part = !(cell.row.cost == Cost::unread && file == 1);
      expect((found != result.files.end()) == part, name + " is part of the run or not");
      if (found == result.files.end()) continue;
      const auto failure = failureOf(cell, file, number);
      const Reason* reason = found->outcomes[drive].reason();
      expect(failure ? reason != nullptr && *reason == *failure : reason == nullptr,
             name + at + ": " + (reason != nullptr ? reason->english() : "verified"));
      expectCopy(cell, name, number, !failure, expect);
    }
  }

  template <class Expect>
  void expectCopy(const Cell& cell, const std::string& name, int number, bool verified,
                  const Expect& expect) {
    const Path copy = copies(number) / name;
    const bool there = std::filesystem::exists(copy);
    const bool isMiddle = name == kNames[1];
    const bool hasName =
        cell.row.cost == Cost::proof ||
        (isMiddle && (cell.row.cost == Cost::named || cell.row.cost == Cost::name));
    const bool stays = cell.row.before == Before::copies || hasName;
    expect(there == (verified || stays), copy.native() + (there ? " is there" : " is missing"));
    if (!there) return;
    expect(readFile(copy) == readFile(card_ / name), copy.native() + " differs");
    expect(cell.row.call == Call::setDates || std::filesystem::last_write_time(copy) ==
                                                  std::filesystem::last_write_time(card_ / name),
           copy.native() + " has another date");
  }

  // Every cell of the matrix that concerns the drives given.
  static std::vector<Cell> cellsOf(const std::set<int>& drives) {
    std::vector<Cell> cells;
    const auto add = [&](const Row& row, bool onTheCard, Size size) {
      for (const int error : kErrors) {
        // An interrupted write is made again, so one forever would never end.
        if (row.call == Call::write && error == EINTR) continue;
        cells.push_back({row, onTheCard, drives, size, error, Intervention{error}});
      }
      if (row.call != Call::read && row.call != Call::write) return;
      Row harmless = row;
      harmless.cost = Cost::nothing;
      cells.push_back({harmless, onTheCard, drives, size, 0, Intervention{0, 1000}});
      if (row.call != Call::write) return;
      cells.push_back({harmless, onTheCard, drives, size, 0, Intervention{EINTR}, true});
      // A write that failed is not made good by the next one; a drive that takes nothing and
      // reports nothing must not hang the run.
      if (drives.size() == 1) {
        cells.push_back({row, onTheCard, drives, size, EFBIG, Intervention{EFBIG}, true});
      }
      cells.push_back({row, onTheCard, drives, size, EIO, Intervention{0, 0}});
    };
    for (const Size size : {Size::streamed, Size::grouped}) {
      for (const Row& row : kOnDrives) add(row, false, size);
      if (drives.size() < 3) continue;  // what the card costs, it costs on all drives
      for (const Row& row : kOnTheCard) add(row, true, size);
    }
    return cells;
  }

  static std::string textOf(const Cell& cell) {
    return kFunctions.at(cell.row.call == Call::entryStatus ? Call::list : cell.row.call) +
           (cell.onTheCard ? " card/" : " drive/") + cell.row.place + " " +
           Reason::ofSystem(cell.error).english() +
           (cell.size == Size::streamed ? " streamed" : " grouped");
  }

  PlatformKit::Testing::ManualClock now_{clock_.now()};
  int hits_ = 0;
};

TEST_F(FaultMatrix, onlyWhatACallTouchesFails) {
  for (const std::set<int>& drives : {std::set<int>{2}, std::set<int>{1, 2, 3}}) {
    for (const Cell& cell : cellsOf(drives)) {
      EXPECT_THAT(faultsOf(cell, fileSystem_), IsEmpty())
          << textOf(cell) << " on " << drives.size() << " drives";
    }
  }
}

TEST_F(FaultMatrix, hasEveryCallOfTheSeam) {
  std::multiset<std::string> covered;
  std::set<Call> calls;
  for (const Row& row : kOnDrives) calls.insert(row.call);
  for (const Row& row : kOnTheCard) calls.insert(row.call);
  calls.erase(Call::entryStatus);
  for (const Call call : calls) covered.insert(kFunctions.at(call));
  // Advice, which cannot fail.
  covered.insert({"prefetch", "discard"});

  std::multiset<std::string> declared;
  const std::string header = readFile(ZEPHRIMARK_SEAM);
  const std::regex function("virtual[^;~]*?(\\w+)\\([^;]*?\\)\\s*=\\s*0;");
  for (std::sregex_iterator it(header.begin(), header.end(), function), end; it != end; ++it) {
    declared.insert((*it)[1]);
  }
  EXPECT_EQ(covered, declared);
}

/// An engine with a fault, seen from below: what it does with the answers is done to them here.
class BrokenEngine final : public Torture::PassThrough {
 public:
  enum class Fault { swallowsWriteErrors, leaksDescriptors, leavesTemporaryCopies, datesTheCard };

  BrokenEngine(PlatformKit::FileSystem& below, Fault fault) : PassThrough(below), fault_(fault) {}

  Result<std::unique_ptr<WritableFile>> createFile(const Path& path) override {
    auto created = below_.createFile(path);
    if (!created.ok() || fault_ == Fault::leavesTemporaryCopies) return created;
    if (fault_ != Fault::leaksDescriptors) {
      return std::unique_ptr<WritableFile>(std::make_unique<File>(std::move(created.value())));
    }
    const std::lock_guard lock(mutex_);
    leaked_.push_back(std::make_unique<std::ifstream>(path));
    return created;
  }
  int removeFile(const Path& path) override {
    return fault_ == Fault::leavesTemporaryCopies ? 0 : below_.removeFile(path);
  }
  Result<std::unique_ptr<PlatformKit::ReadableFile>> openForReading(
      const Path& path, PlatformKit::ReadMode mode) override {
    if (fault_ == Fault::datesTheCard) static_cast<void>(below_.setDates(path, {}, {}));
    return below_.openForReading(path, mode);
  }

 private:
  class File final : public Torture::PassThroughWritable {
   public:
    using PassThroughWritable::PassThroughWritable;
    int flush() override {
      static_cast<void>(below_->flush());
      return 0;
    }
  };

  const Fault fault_;
  std::mutex mutex_;
  std::vector<std::unique_ptr<std::ifstream>> leaked_;
};

TEST_F(FaultMatrix, wouldNoticeABrokenEngine) {
  using Fault = BrokenEngine::Fault;
  const std::pair<Fault, std::string> faults[] = {
      {Fault::swallowsWriteErrors, "given up wrongly on drive 2"},
      {Fault::leaksDescriptors, "a descriptor is left open"},
      {Fault::leavesTemporaryCopies, "left over: 2026-10-07/A001/b/.b.zmpart"},
      {Fault::datesTheCard, "the card was changed"},
  };
  const Row row{Call::flush, kLeftover, Cost::content};
  for (const auto& [fault, noticed] : faults) {
    BrokenEngine broken(fileSystem_, fault);
    const Names found = faultsOf({row, false, {2}, Size::streamed, EIO, Intervention{EIO}}, broken);
    EXPECT_TRUE(found.contains(noticed)) << ::testing::PrintToString(found);
  }
}

TEST_F(FaultMatrix, aDriveThatFillsUpKeepsWhatItHasAndIsNotTriedAgain) {
  prepare(Size::streamed, Before::nothing);
  bool triedAgain = false;
  fileSystem_.setScript([&](const CallInfo& info) {
    const bool there = info.path.native().starts_with(drive(2).native());
    triedAgain |= there && info.path.filename() == ".c.zmpart";
    const bool full = there && info.path.filename() == ".b.zmpart" && info.call == Call::write &&
                      info.offset >= 4096;
    return Intervention{full ? ENOSPC : 0};
  });
  EXPECT_EQ(run(planOf(Size::streamed)).verifiedCount(1), 1U);
  EXPECT_FALSE(triedAgain);

  fileSystem_.setScript({});
  EXPECT_TRUE(run(planOf(Size::streamed)).allVerified());
  expectIdentical(2);
}

TEST_F(FaultMatrix, aNameThatAppearsBeforeTheMoveIsNotReplaced) {
  prepare(Size::grouped, Before::nothing);
  fileSystem_.setScript([&](const CallInfo& info) {
    if (info.call == Call::move && info.path == copies(2) / "c") writeFile(info.path, "somebody's");
    return Intervention{};
  });
  EXPECT_EQ(run(plan(3)).files[2].outcomes[1], Outcome::failed(because("File exists")));
  EXPECT_EQ(readFile(copies(2) / "c"), "somebody's");
}

}  // namespace
}  // namespace OffloadKit
