#include "OffloadKit/OffloadEngine.h"
#include "TextKit/Unicode.h"
#include "tests/OffloadKit/OffloadFixture.h"

#include <atomic>
#include <cerrno>
#include <fstream>
#include <thread>

#include <sys/stat.h>

namespace OffloadKit {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Property;
using Phase = OffloadProgress::Phase;

class Offload : public OffloadFixture {
 protected:
  void addCard() {
    addFile("DCIM/100CANON/IMG_0001.CR3", pattern(5 * kChunk + 123, 1));
    addFile("DCIM/100CANON/IMG_0002.CR3", pattern(kChunk, 2));
    addFile("DCIM/100CANON/IMG_0003.CR3", pattern(1000, 3));
    addFile("empty", "");
    addFile(".hidden/x", "hidden");
  }
};

TEST_F(Offload, copiesEverythingToAllDrivesAndResumesWithoutWriting) {
  addCard();
  for (const auto algorithm : HashKit::allHashAlgorithms()) {
    for (int number = 1; number <= 3; ++number) std::filesystem::remove_all(copies(number));
    auto wanted = plan(3);
    wanted.algorithm = algorithm;
    const auto before = cardState();
    const OffloadResult first = run(wanted);
    EXPECT_TRUE(first.allVerified());
    for (const auto& file : first.files) {
      EXPECT_THAT(file.outcomes, Each(Outcome::verified(false)));
      const std::string content = readFile(card_ / file.file.relativePath);
      EXPECT_EQ(file.hash, HashKit::hash(algorithm, std::as_bytes(std::span(content))));
    }
    for (int number = 1; number <= 3; ++number) expectIdentical(number);

    fileSystem_.setScript([](const CallInfo& info) {
      const std::string name = info.path.filename();
      const bool isRecord = name.starts_with("Offload Report ") ||
                            name == ".Offload Report.zmpart" || name == ".Offload.zmpart" ||
                            info.path.parent_path().filename() == "ascmhl";
      EXPECT_TRUE(isRecord || (info.call != Call::createFile && info.call != Call::move &&
                               info.call != Call::setDates && info.call != Call::remove))
          << info.path;
      return Intervention{};
    });
    for (const auto& file : run(wanted).files) {
      EXPECT_THAT(file.outcomes, Each(Outcome::verified(true)));
    }
    fileSystem_.setScript({});
    EXPECT_EQ(cardState(), before);
  }
  expectNothingPending();
}

TEST_F(Offload, copiesNamesOfAnyBytes) {
  for (const std::string& name :
       {std::string("two\nlines"), std::string("quote\"'<&>"), std::string("invalid\xFF\xC3utf"),
        std::string("e\xCC\x81"), std::string("\xC3\xA9"), std::string("\xF0\x9F\x8E\xA5"),
        std::string(255, 'n'), std::string("-dash"), std::string(" "), std::string("IMG"),
        std::string(".IMG.zmpart")}) {
    addFile("d/" + name, name);
  }
  EXPECT_TRUE(run(plan()).allVerified());
  expectIdentical(1);
  expectIdentical(2);
}

TEST_F(Offload, countsEveryByteOfItsWorkOnce) {
  addFile("a", pattern(3 * kChunk));
  addFile("b", pattern(10));
  std::vector<OffloadProgress> reports;
  OffloadEngine(system_, rawDeviceAccess_).run(plan(2), [&](const OffloadProgress& p) {
    reports.push_back(p);
  });

  std::vector<Phase> phases;
  for (const auto& report : reports) phases.push_back(report.phase);
  EXPECT_THAT(phases, ElementsAre(Phase::scanning, Phase::copying, Phase::copying, Phase::copying,
                                  Phase::copying, Phase::verifying, Phase::copying, Phase::copying,
                                  Phase::verifying, Phase::finishing));
  const double total = 4.0 * (3 * kChunk + 10);
  EXPECT_EQ(reports[0].filesTotal, 0U);
  EXPECT_DOUBLE_EQ(reports[2].fraction, kChunk / total);
  EXPECT_DOUBLE_EQ(reports[5].fraction, 4.0 * 3 * kChunk / total);
  EXPECT_EQ(reports[6].filesDone, 1U);
  EXPECT_EQ(reports[6].currentFile, "b");
  EXPECT_DOUBLE_EQ(reports[8].fraction, 1);
  EXPECT_EQ(reports[9].filesDone, 2U);
  EXPECT_EQ(reports[9].currentFile, "");
}

TEST_F(Offload, tellsTheAverageRateInSourceBytes) {
  // Every look at the clock finds ten seconds gone.
  class StridingClock final : public PlatformKit::Clock {
   public:
    [[nodiscard]] PlatformKit::Date now() const override {
      return PlatformKit::Date(std::chrono::seconds(10) * ++looks_);
    }

   private:
    mutable std::atomic<int> looks_ = 0;
  } clock;
  addFile("a", pattern(1000));
  std::vector<double> rates;
  OffloadEngine({fileSystem_, volumes_, clock}, rawDeviceAccess_)
      .run(plan(2),
           [&](const OffloadProgress& progress) { rates.push_back(progress.bytesPerSecond); });
  // Work weight 4: copied after 20 s, wholly verified after 30 s.
  EXPECT_THAT(rates, ElementsAre(0, 0, 1000.0 / 4 / 20, 1000.0 / 30, 0));
}

TEST_F(Offload, refusesACardWithoutFilesAndAnImpossiblePlan) {
  addFile(".DS_Store", "x");
  EXPECT_EQ(offloadErrorOf([&] { run(plan()); }), "There are no files on the card to offload.");
  auto wanted = plan();
  wanted.chunkSize = 0;
  EXPECT_THROW(run(wanted), std::invalid_argument);
  addFile("a", "x");
  writeFile(copies(2).parent_path(), "a file where the folder should be");
  EXPECT_EQ(offloadErrorOf([&] { run(plan()); }),
            "T2 (A001) isn't available or can't be written to.");
}

TEST_F(Offload, countsNoFilesForSpaceWhenAskedNotTo) {
  addFile("a", pattern(100'000));
  setRoom(1, 16'777'216);
  EXPECT_THROW(run(plan(1)), OffloadError);
  EXPECT_TRUE(OffloadEngine(system_, rawDeviceAccess_)
                  .run(plan(1), false, [](const auto&) {})
                  .allVerified());
}

TEST_F(Offload, doesNotCallACardEmptyThatRefusesToBeRead) {
  addFile("DCIM/a", "x");
  fileSystem_.setScript(FaultyFileSystem::failing(Call::list, "DCIM", EACCES));
  EXPECT_EQ(offloadErrorOf([&] { run(plan()); }),
            "The card couldn't be read: DCIM: Permission denied");
}

TEST_F(Offload, readsBackPastTheCacheOnly) {
  addFile("a", pattern(1000));
  run(plan());
  std::map<std::string, int> pastCache;
  fileSystem_.setScript([&](const CallInfo& info) {
    const bool isCopy = info.path.filename() == "a" || info.path.filename() == ".a.zmpart";
    if (info.call == Call::openForReading && isCopy) {
      pastCache[info.path.parent_path()] += info.mode == PlatformKit::ReadMode::pastCache ? 1 : 100;
    }
    return Intervention{};
  });
  run(plan());
  std::filesystem::remove_all(copies(1));
  run(plan());
  // Each run streams the card and reads it again; copies are only ever read past the cache.
  EXPECT_EQ(pastCache[card_], 2 * 101);
  EXPECT_EQ(pastCache[copies(1)], 2);
  EXPECT_EQ(pastCache[copies(2)], 2);
}

TEST_F(Offload, keepsTwoRunsOutOfOneFolder) {
  addFile("a", pattern(1000));
  const std::string inUse =
      "T1 (A001) is already being copied to. Choose another folder, or wait until that is "
      "finished.";
  OffloadEngine engine(system_, rawDeviceAccess_);
  int refused = 0;
  engine.run(plan(1), [&](const OffloadProgress& progress) {
    if (progress.currentFile != "a") return;
    EXPECT_EQ(offloadErrorOf([&] { run(plan(1)); }), inUse);
    ++refused;
  });
  EXPECT_GT(refused, 0);
  expectIdentical(1);
  EXPECT_TRUE(run(plan(1)).allVerified());

  // Two destinations that are one folder by way of a link.
  std::filesystem::create_directories(drive(2) / "2026-10-07");
  std::filesystem::create_directory_symlink(copies(1), copies(2));
  EXPECT_EQ(offloadErrorOf([&] { run(plan(2)); }),
            "T2 (A001) is already being copied to. Choose another folder, or wait until that is "
            "finished.");
  // A drive without locks is no reason to refuse.
  fileSystem_.setScript(FaultyFileSystem::failing(Call::lockFolder, "", ENOLCK));
  EXPECT_TRUE(run(plan(1)).allVerified());
}

TEST_F(Offload, neverTakesSomebodyElsesFileForItsCopy) {
  addFile("a", pattern(1000, 1));
  fileSystem_.setScript([&](const CallInfo& info) {
    // Another program replaces the temporary copy after it was verified.
    if (info.call == Call::status && info.path.filename() == ".a.zmpart") replaceFile(info.path);
    return Intervention{};
  });
  const auto result = run(plan(1));
  EXPECT_FALSE(result.allVerified());
  EXPECT_FALSE(std::filesystem::exists(copies(1) / "a"));
}

TEST_F(Offload, followsNoLinkOutOfTheDestinationAndTakesNoOriginalForACopy) {
  addFile("DCIM/a", pattern(1000));
  addFile("b", pattern(10));
  std::filesystem::create_directories(copies(1));
  std::filesystem::create_directories(copies(2));
  std::filesystem::create_directory_symlink(card_ / "DCIM", copies(1) / "DCIM");
  std::filesystem::create_hard_link(card_ / "b", copies(2) / "b");
  const auto before = cardState();
  const auto result = run(plan());
  EXPECT_THAT(
      result.files[0].outcomes,
      ElementsAre(Outcome::verified(false),
                  Outcome::failed(because("This is the card's own file, not a copy of it"))));
  EXPECT_THAT(result.files[1].outcomes,
              ElementsAre(Outcome::failed(
                              because("A link in the destination folder leads to another place")),
                          Outcome::verified(false)));
  EXPECT_EQ(cardState(), before);
}

TEST_F(Offload, findsACopyThatChangedBetweenWritingAndReadingBack) {
  addFile("a", pattern(200'000));
  addFile("b", pattern(10));
  OffloadEngine engine(system_, rawDeviceAccess_);
  engine.afterWrite = [&](const Path& copy) {
    if (copy.native().find("drive2") == std::string::npos || copy.filename() != ".a.zmpart") return;
    std::fstream stream(copy, std::ios::in | std::ios::out | std::ios::binary);
    stream.seekp(150'000);
    stream.put('\x55');
  };
  const auto result = engine.run(plan(3), [](const auto&) {});
  EXPECT_THAT(result.files[0].outcomes,
              ElementsAre(Outcome::verified(false),
                          Outcome::failed(because("The copy didn't match the original")),
                          Outcome::verified(false)));
  EXPECT_THAT(result.files[1].outcomes, Each(Outcome::verified(false)));
  EXPECT_THAT(result.destinationErrors, IsEmpty());
  EXPECT_FALSE(std::filesystem::exists(copies(2) / "a"));
  expectNothingPending();
}

TEST_F(Offload, findsAResumedCopyWithOtherContentAndLeavesItAlone) {
  addFile("a", pattern(100'000, 1));
  writeFile(copies(1) / "a", pattern(100'000, 2));
  std::filesystem::last_write_time(copies(1) / "a", std::filesystem::last_write_time(card_ / "a"));
  const auto result = run(plan());
  EXPECT_THAT(result.files[0].outcomes,
              ElementsAre(Outcome::failed(because("The copy didn't match the original")),
                          Outcome::verified(false)));
  EXPECT_EQ(readFile(copies(1) / "a"), pattern(100'000, 2));
}

TEST_F(Offload, findsACardThatReadsDifferentlyTheSecondTime) {
  addFile("a", pattern(200'000));
  addFile("b", "fine");
  int opened = 0;
  fileSystem_.setScript([&](const CallInfo& info) {
    const bool theFile = info.path == card_ / "a";
    if (theFile && info.call == Call::openForReading) ++opened;
    Intervention intervention;
    // The first reading opens a file of several chunks twice.
    intervention.flipBit = theFile && info.call == Call::read && opened == 3 && info.offset > 0;
    return intervention;
  });
  const auto result = run(plan());
  EXPECT_THAT(
      result.files[0].outcomes,
      Each(Outcome::failed(because("The card couldn't be read: a read differently the second time. "
                                   "The card or reader may be failing."))));
  EXPECT_EQ(result.files[0].hash, std::nullopt);
  EXPECT_THAT(result.files[1].outcomes, Each(Outcome::verified(false)));
  EXPECT_THAT(copiedTree(1), ElementsAre("b"));
  expectNothingPending();

  // A second reading that fails proves no more than one that differs.
  fileSystem_.setScript([&](const CallInfo& info) {
    const bool second = info.call == Call::openForReading && info.path == card_ / "b" &&
                        info.mode == PlatformKit::ReadMode::pastCache;
    return Intervention{second ? EIO : 0};
  });
  std::filesystem::remove_all(copies(1));
  EXPECT_EQ(run(plan(1)).files[1].outcomes[0],
            Outcome::failed(because("The card couldn't be read: b read differently the second "
                                    "time. The card or reader may be failing.")));

  opened = 0;
  fileSystem_.setScript([&](const CallInfo& info) {
    opened += info.path == card_ / "b" && info.call == Call::openForReading ? 1 : 0;
    return Intervention{};
  });
  std::filesystem::remove_all(copies(1));
  auto once = plan(1);
  once.verifySource = false;
  EXPECT_TRUE(run(once).allVerified());
  EXPECT_EQ(opened, 1);
}

TEST_F(Offload, failsAFileThatChangesBetweenScanAndCopy) {
  const std::pair<std::function<void()>, std::string> changes[] = {
      {[&] { writeFile(card_ / "b", pattern(kChunk + 1)); },
       "b changed size while it was being read"},
      {[&] { writeFile(card_ / "b", pattern(99)); }, "b changed size while it was being read"},
      {[&] { std::filesystem::remove(card_ / "b"); }, "b: No such file or directory"},
      {[&] {
         std::filesystem::remove(card_ / "b");
         std::filesystem::create_symlink("a", card_ / "b");
       },
       "b: Too many levels of symbolic links"},
      {[&] {
         std::filesystem::remove(card_ / "b");
         std::filesystem::create_directory(card_ / "b");
       },
       "b: Is a directory"},
      {[&] {
         std::filesystem::remove(card_ / "b");
         ASSERT_EQ(mkfifo((card_ / "b").c_str(), 0600), 0);
       },
       "b: Operation not supported"},
  };
  for (const auto& [change, message] : changes) {
    std::filesystem::remove_all(copies(1));
    std::filesystem::remove_all(card_ / "b");
    for (const char* name : {"a", "b", "c"}) addFile(name, pattern(kChunk));
    bool changed = false;
    const auto result =
        OffloadEngine(system_, rawDeviceAccess_).run(plan(1), [&, &act = change](const auto& p) {
          // Before the card is asked for it, which is while the drives take "a".
          if (p.currentFile == "a" && !std::exchange(changed, true)) act();
        });
    EXPECT_THAT(result.files[1].outcomes,
                ElementsAre(Outcome::failed(because("The card couldn't be read: " + message))));
    EXPECT_THAT(copiedTree(1), ElementsAre("a", "c"));
    expectNothingPending();
  }
}

TEST_F(Offload, copiesGroupsLongerThanTheBufferAndMissesOnlyWhatCannotBeRead) {
  for (char number = 'A'; number <= 'Z'; ++number) {
    for (const unsigned part : {1U, 2U, 3U, 4U}) {
      addFile(std::string(1, number) + std::to_string(part),
              pattern(20'000, static_cast<unsigned>(number) * part));
    }
  }
  int flushes = 0;
  fileSystem_.setScript([&](const CallInfo& info) {
    if (info.call == Call::flushVolume) ++flushes;
    return Intervention{info.path == card_ / "M2" && info.call == Call::read ? EIO : 0};
  });
  const auto result = run(plan(1));
  EXPECT_LT(flushes, 12) << "of 32 fillings of the buffer";
  ASSERT_EQ(result.failedFiles().size(), 1U);
  EXPECT_EQ(result.failedFiles()[0]->outcomes[0],
            Outcome::failed(because("The card couldn't be read: M2: Input/output error")));
  fileSystem_.setScript({});
  EXPECT_TRUE(run(plan(1)).allVerified());
  expectIdentical(1);
}

TEST_F(Offload, stopsWhileTheNextGroupHasBegun) {
  for (char name = 'a'; name <= 'z'; ++name) addFile(std::string(1, name), pattern(20'000));
  std::atomic<bool> nextHasBegun = false;
  fileSystem_.setScript([&](const CallInfo& info) {
    if (info.call == Call::createFile && info.path.filename() == ".d.zmpart") nextHasBegun = true;
    return Intervention{};
  });
  OffloadEngine engine(system_, rawDeviceAccess_);
  const auto stop = [&](const OffloadProgress& progress) {
    if (progress.filesDone != 1) return;
    for (int i = 0; i < 5000 && !nextHasBegun; ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    engine.cancel();
  };
  EXPECT_EQ(offloadErrorOf([&] { engine.run(plan(), stop); }), "The offload was stopped.");
  EXPECT_TRUE(nextHasBegun);
  expectNothingPending();
  EXPECT_EQ(copiedTree(1), std::vector<std::string>{"a"});
  EXPECT_TRUE(run(plan()).allVerified());
}

// On a drive that does not tell them apart, one's temporary copy would take the place of the
// other's.
TEST_F(Offload, hasNoTwoCopiesOnTheirWayWhoseNamesDifferInCaseOnly) {
  for (const std::string name : {"a", "b", "c", "d", "e", "f", "g", "h"}) {
    addFile(name, pattern(1000));
    addFile(TextKit::upperCase(name), pattern(1000));
  }
  std::atomic<int> both = 0;
  fileSystem_.setScript([&](const CallInfo& info) {
    const std::string name = info.path.filename();
    if (info.call != Call::createFile || !name.ends_with(".zmpart") || name.size() != 9)
      return Intervention{};
    std::string other = name;
    other[1] = static_cast<char>(other[1] ^ 0x20);
    if (std::filesystem::exists(info.path.parent_path() / other)) ++both;
    return Intervention{};
  });
  EXPECT_TRUE(run(plan()).allVerified());
  EXPECT_EQ(both, 0);
  expectIdentical(1);
}

TEST_F(Offload, leavesResumedCopiesAloneWhenTheCardFailsOrTheUserStops) {
  addFile("a", pattern(20 * kChunk));
  EXPECT_TRUE(run(plan()).allVerified());
  fileSystem_.setScript([&](const CallInfo& info) {
    const bool far = info.call == Call::read && info.offset > 5 * kChunk;
    return Intervention{far && info.path == card_ / "a" ? EIO : 0};
  });
  EXPECT_THAT(run(plan()).files[0].outcomes,
              Each(Outcome::failed(because("The card couldn't be read: a: Input/output error"))));
  fileSystem_.setScript({});
  OffloadEngine engine(system_, rawDeviceAccess_);
  const auto stop = [&](const OffloadProgress& progress) {
    if (progress.fraction > 0) engine.cancel();
  };
  EXPECT_THROW(engine.run(plan(), stop), OffloadError);
  EXPECT_THAT(run(plan()).files[0].outcomes, Each(Outcome::verified(true)));
  expectIdentical(1);
  expectIdentical(2);
}

TEST_F(Offload, stopsWithinALongFile) {
  addFile("a", pattern(20 * kChunk));
  OffloadEngine engine(system_, rawDeviceAccess_);
  int chunks = 0;
  const auto stop = [&](const OffloadProgress& progress) {
    if (progress.fraction > 0) ++chunks;
    engine.cancel();
  };
  addFile("b", "x");
  EXPECT_EQ(offloadErrorOf([&] { engine.run(plan(), stop); }), "The offload was stopped.");
  OffloadEngine second(system_, rawDeviceAccess_);
  chunks = 0;
  const auto stopLater = [&](const OffloadProgress& progress) {
    if (progress.fraction > 0 && ++chunks == 2) second.cancel();
  };
  EXPECT_EQ(offloadErrorOf([&] { second.run(plan(), stopLater); }), "The offload was stopped.");
  EXPECT_EQ(chunks, 2);
}

TEST_F(Offload, stopsAtAnyReportAndLeavesOnlyVerifiedFiles) {
  addCard();
  int reports = 0;
  run(plan());
  OffloadEngine(system_, rawDeviceAccess_).run(plan(), [&](const auto&) { ++reports; });
  ASSERT_GT(reports, 10);
  // The last two reports say that every file is done; a stop then comes too late.
  for (int stopAt = 1; stopAt < reports - 1; ++stopAt) {
    for (int number = 1; number <= 2; ++number) std::filesystem::remove_all(copies(number));
    OffloadEngine engine(system_, rawDeviceAccess_);
    int seen = 0;
    const auto stop = [&](const OffloadProgress&) {
      if (++seen == stopAt) engine.cancel();
    };
    EXPECT_EQ(offloadErrorOf([&] { engine.run(plan(), stop); }), "The offload was stopped.");
    expectNothingPending();
    for (const std::string& item : copiedTree(1)) {
      if (item.ends_with('/')) continue;
      EXPECT_EQ(readFile(copies(1) / item), readFile(card_ / item));
    }
    EXPECT_TRUE(run(plan()).allVerified());
    expectIdentical(2);
  }
}

TEST_F(Offload, makesItsFoldersDurableOnceAtTheEnd) {
  addFile("DCIM/100/a", "x");
  addFile("DCIM/100/b", "x");
  std::map<Path, int> flushed;
  bool allMoved = false;
  bool recording = false;
  fileSystem_.setScript([&](const CallInfo& info) {
    if (info.call == Call::move) allMoved = info.path.filename() == "b";
    // Records flush what they write by themselves.
    recording |= info.path.filename() == ".Offload Report.zmpart";
    if (info.call == Call::flushFolder && !recording) {
      EXPECT_TRUE(allMoved);
      ++flushed[info.path];
    }
    return Intervention{};
  });
  run(plan(1));
  const Path top = copies(1);
  EXPECT_THAT(flushed, ElementsAre(std::pair(drive(1), 1), std::pair(top.parent_path(), 1),
                                   std::pair(top, 1), std::pair(top / "DCIM", 1),
                                   std::pair(top / "DCIM/100", 1)));
}

TEST_F(Offload, readsTheCardTwiceAndFlushesEveryCopyOnce) {
  addFile("a", pattern(40 * kChunk));
  std::map<Call, int> calls;
  fileSystem_.setScript([&](const CallInfo& info) {
    const std::string name = info.path.filename();
    if (name == "a" || name == ".a.zmpart") ++calls[info.call];
    return Intervention{};
  });
  run(plan(2));
  EXPECT_EQ(calls[Call::createFile], 2);
  EXPECT_EQ(calls[Call::openForReading], 5);
  EXPECT_EQ(calls[Call::flush], 2);
  EXPECT_EQ(calls[Call::write], 80);
  // The card twice and each copy once, in halves of chunks.
  EXPECT_GE(calls[Call::read], 4 * 80);
  EXPECT_LE(calls[Call::read], 4 * 82);
}

}  // namespace
}  // namespace OffloadKit
