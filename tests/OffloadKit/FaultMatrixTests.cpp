#include "OffloadKit/ErrorSentences.h"
#include "tests/OffloadKit/OffloadFixture.h"

#include <atomic>
#include <cerrno>

namespace OffloadKit {
namespace {

using ::testing::Each;

/// Every call of the seam, each failing with every error, for the middle one of three files: on the
/// second of three drives, or on the card. Whatever happens, the other drives are verified, the
/// card is as before, nothing is left under a temporary name and no file stays open.
class FaultMatrix : public OffloadFixture {
 protected:
  static constexpr int kErrors[] = {EINTR,  EIO,   ENXIO, ENODEV, ENOSPC,
                                    EACCES, EROFS, EFBIG, EMFILE, EDQUOT};

  void prepare() {
    fileSystem_.setScript({});
    for (int number = 1; number <= 3; ++number) std::filesystem::remove_all(copies(number));
    // Long enough for two chunks beyond the write-back window.
    for (const char* name : {"a", "b", "c"}) addFile(name, pattern(4 * kChunk));
  }

  // Fails `call` wherever it concerns "b" or its temporary copy below `top`, once or forever.
  void failFor(const Path& top, Call call, int error, bool once) {
    hits_ = 0;
    fileSystem_.setScript([this, top, call, error, once](const CallInfo& info) {
      const std::string name = info.path.filename();
      const bool hit = info.call == call && (name == "b" || name == ".b.zmpart") &&
                       info.path.native().starts_with(top.native());
      if (!hit || (once && hits_ > 0)) return Intervention{};
      ++hits_;
      return Intervention{error};
    });
  }

  void expectOthersWell(const OffloadResult& result) {
    for (const std::size_t file : {0U, 1U, 2U}) {
      EXPECT_EQ(result.files[file].outcomes[0], Outcome::verified(false));
      EXPECT_EQ(result.files[file].outcomes[2], Outcome::verified(false));
    }
    EXPECT_EQ(result.files[0].outcomes[1], Outcome::verified(false));
    expectIdentical(1);
    expectIdentical(3);
    expectNothingPending();
  }

  int hits_ = 0;
};

TEST_F(FaultMatrix, oneDriveFailsAloneWithItsSentence) {
  for (const Call call : {Call::createFile, Call::write, Call::startWriteback,
                          Call::finishWriteback, Call::flush, Call::move}) {
    for (const int error : kErrors) {
      // An interrupted write is made again, so one forever would never end.
      if (call == Call::write && error == EINTR) continue;
      SCOPED_TRACE("call " + std::to_string(static_cast<int>(call)) + " error " +
                   std::to_string(error));
      prepare();
      const auto before = cardState();
      failFor(drive(2), call, error, false);
      const auto result = run(plan(3));
      ASSERT_GT(hits_, 0);
      const auto failed = Outcome::failed(describe(error));
      EXPECT_EQ(result.files[1].outcomes[1], failed);
      expectOthersWell(result);
      EXPECT_FALSE(std::filesystem::exists(copies(2) / "b"));
      EXPECT_EQ(cardState(), before);

      const bool whileWriting = call != Call::createFile && call != Call::move;
      const bool givenUp = whileWriting && endsTheDrive(error);
      EXPECT_EQ(result.files[2].outcomes[1], givenUp ? failed : Outcome::verified(false));
      EXPECT_EQ(result.destinationErrors.size(), givenUp ? 1U : 0U);
      EXPECT_EQ(std::filesystem::exists(copies(2) / "c"), !givenUp);
    }
  }
}

TEST_F(FaultMatrix, aCopyThatCannotBeReadBackFailsAlone) {
  for (const Call call : {Call::openForReading, Call::read}) {
    for (const int error : kErrors) {
      prepare();
      failFor(drive(2), call, error, false);
      const auto result = run(plan(3));
      EXPECT_EQ(result.files[1].outcomes[1], Outcome::failed("The copy couldn't be read back"));
      EXPECT_EQ(result.files[2].outcomes[1], Outcome::verified(false));
      expectOthersWell(result);
      EXPECT_FALSE(std::filesystem::exists(copies(2) / "b"));
    }
  }
}

TEST_F(FaultMatrix, aFileOfTheCardThatCannotBeReadFailsEverywhereWithTheSystemsReason) {
  for (const Call call : {Call::openForReading, Call::read}) {
    for (const int error : kErrors) {
      prepare();
      failFor(card_, call, error, false);
      const auto result = run(plan(3));
      EXPECT_THAT(result.files[1].outcomes,
                  Each(Outcome::failed("The card couldn't be read: b: " + systemText(error))));
      EXPECT_THAT(result.files[2].outcomes, Each(Outcome::verified(false)));
      EXPECT_TRUE(result.destinationErrors.empty());
      EXPECT_FALSE(std::filesystem::exists(copies(1) / "b"));
      expectNothingPending();
    }
  }
}

TEST_F(FaultMatrix, whatDoesNotTouchTheContentFailsNothing) {
  for (const Call call : {Call::setDates, Call::setFileDates}) {
    for (const int error : kErrors) {
      prepare();
      failFor(drive(2), call, error, false);
      EXPECT_TRUE(run(plan(3)).allVerified());
      expectNothingPending();
    }
  }
}

TEST_F(FaultMatrix, interruptedAndShortWritesAreCarriedOn) {
  prepare();
  failFor(drive(2), Call::write, EINTR, true);
  EXPECT_TRUE(run(plan(3)).allVerified());
  EXPECT_EQ(hits_, 1);

  prepare();
  fileSystem_.setScript([](const CallInfo& info) {
    Intervention intervention;
    if (info.call == Call::write) intervention.limit = 1000;
    return intervention;
  });
  EXPECT_TRUE(run(plan(3)).allVerified());
  for (int number = 1; number <= 3; ++number) expectIdentical(number);

  // A write that failed once is not made good by the next one that succeeds.
  prepare();
  failFor(drive(2), Call::write, EFBIG, true);
  EXPECT_EQ(run(plan(3)).files[1].outcomes[1], Outcome::failed(describe(EFBIG)));

  // A drive that takes nothing and reports nothing must not hang the run.
  prepare();
  fileSystem_.setScript([this](const CallInfo& info) {
    Intervention intervention;
    const bool hit = info.call == Call::write && info.path.native().starts_with(drive(2).native());
    if (hit) intervention.limit = 0;
    return intervention;
  });
  EXPECT_EQ(run(plan(3)).files[0].outcomes[1], Outcome::failed("The drive reported a write error"));
}

TEST_F(FaultMatrix, aDriveThatFillsUpKeepsWhatItHasAndIsNotTriedAgain) {
  prepare();
  bool triedAgain = false;
  fileSystem_.setScript([&](const CallInfo& info) {
    const bool there = info.path.native().starts_with(drive(2).native());
    triedAgain |= there && info.path.filename() == ".c.zmpart";
    const bool full = there && info.path.filename() == ".b.zmpart" && info.call == Call::write &&
                      info.offset >= kChunk;
    return Intervention{full ? ENOSPC : 0};
  });
  const auto result = run(plan(3));
  EXPECT_EQ(result.files[1].outcomes[1], Outcome::failed("The drive is full"));
  EXPECT_EQ(result.files[2].outcomes[1], Outcome::failed("The drive is full"));
  EXPECT_EQ(result.destinationErrors.at(1), "The drive is full");
  EXPECT_FALSE(triedAgain);
  expectOthersWell(result);

  fileSystem_.setScript({});
  EXPECT_TRUE(run(plan(3)).allVerified());
  expectIdentical(2);
}

TEST_F(FaultMatrix, aBitThatFlipsWhileWritingIsNeverVerified) {
  for (const std::uint64_t offset : {std::uint64_t{0}, std::uint64_t{3 * kChunk}}) {
    prepare();
    fileSystem_.setScript([&](const CallInfo& info) {
      Intervention intervention;
      intervention.flipBit =
          info.call == Call::write && info.offset == offset && info.path == copies(2) / ".b.zmpart";
      return intervention;
    });
    const auto result = run(plan(3));
    EXPECT_EQ(result.files[1].outcomes[1], Outcome::failed("The copy didn't match the original"));
    expectOthersWell(result);
    EXPECT_FALSE(std::filesystem::exists(copies(2) / "b"));
  }
}

TEST_F(FaultMatrix, aNameThatAppearsBeforeTheMoveIsNotReplaced) {
  prepare();
  fileSystem_.setScript([&](const CallInfo& info) {
    if (info.call == Call::move && info.path == copies(2) / "b") writeFile(info.path, "somebody's");
    return Intervention{};
  });
  const auto result = run(plan(3));
  EXPECT_EQ(result.files[1].outcomes[1], Outcome::failed("File exists"));
  EXPECT_EQ(readFile(copies(2) / "b"), "somebody's");
  expectOthersWell(result);
}

TEST_F(FaultMatrix, foldersThatCannotBeMadeFailTheirFilesOnly) {
  addFile("sub/x", "x");
  addFile("y", "y");
  for (const int error : kErrors) {
    for (int number = 1; number <= 2; ++number) std::filesystem::remove_all(copies(number));
    fileSystem_.setScript(
        FaultyFileSystem::failing(Call::createFolder, "drive2/2026-10-07/A001/sub", error));
    const auto result = run(plan());
    EXPECT_EQ(result.files[0].outcomes[1], Outcome::failed(describe(error)));
    EXPECT_EQ(result.files[1].outcomes[1], Outcome::verified(false));
    EXPECT_EQ(result.verifiedCount(0), 2U);
  }
}

TEST_F(FaultMatrix, namesThatCannotBeMadeDurableAreNotVerified) {
  for (const auto& [error, matters] : {std::pair(EIO, true), {ENOSPC, true}, {EACCES, false}}) {
    prepare();
    addFile("sub/x", "x");
    fileSystem_.setScript(
        FaultyFileSystem::failing(Call::flushFolder, "drive2/2026-10-07/A001/sub", error));
    const auto result = run(plan(3));
    EXPECT_EQ(result.files[0].outcomes[1], Outcome::verified(false));
    EXPECT_EQ(result.files[3].outcomes[0], Outcome::verified(false));
    EXPECT_EQ(result.files[3].outcomes[1],
              matters ? Outcome::failed(describe(error)) : Outcome::verified(false));
  }
  // A copy made by somebody else counts only once its content is on the drive too.
  fileSystem_.setScript(FaultyFileSystem::failing(Call::flushVolume, "drive2", EIO));
  const auto result = run(plan(3));
  EXPECT_EQ(result.verifiedCount(0), 4U);
  EXPECT_EQ(result.verifiedCount(1), 0U);
}

}  // namespace
}  // namespace OffloadKit
