#include "tests/OffloadKit/OffloadFixture.h"

#include <cerrno>
#include <map>
#include <random>

namespace OffloadKit {
namespace {

/// Small files are copied together because that is faster; nobody may be able to tell from what
/// becomes of them. Each seed makes one fault for one file on the card or on one drive.
class TogetherOrAlone : public OffloadFixture {
 protected:
  // Hundreds of runs flush their copies, which takes a disk too long.
  static void SetUpTestSuite() {
    if (std::filesystem::exists("/dev/shm")) setenv("TMPDIR", "/dev/shm", 0);
  }

  struct Fault {
    Call call;
    Path place;
    int error;
  };
  struct Ending {
    std::map<std::string, std::vector<std::string>> files;  // "" for a verified copy
    std::vector<std::string> drives;                        // what lies there
    friend bool operator==(const Ending&, const Ending&) = default;
  };

  void prepare() {
    fileSystem_.setScript({});
    std::filesystem::remove_all(card_);
    for (int number = 1; number <= 3; ++number) {
      std::filesystem::remove_all(copies(number).parent_path());
      volumes_.plugIn(device(number));
    }
    for (int i = 0; i < kFiles; ++i)
      addFile(nameOf(i), pattern(700U + 13U * static_cast<unsigned>(i)));
  }

  static std::string nameOf(int number) {
    return std::string(1, static_cast<char>('a' + number / 4)) + "/" + std::to_string(number);
  }

  [[nodiscard]] Fault faultOf(std::mt19937& random) const {
    constexpr Call kCalls[] = {Call::createFile,   Call::write, Call::setFileDates,
                               Call::flush,        Call::read,  Call::openForReading,
                               Call::createFolder, Call::move,  Call::identity};
    constexpr int kErrors[] = {EIO, ENOSPC, EACCES, ENODEV, EROFS, EMFILE};
    const auto one = [&](const auto& list) { return list[random() % std::size(list)]; };
    const Call call = one(kCalls);
    const bool isRead = call == Call::read || call == Call::openForReading;
    const std::string name = nameOf(static_cast<int>(random() % kFiles));
    const Path top =
        isRead && random() % 2 == 0 ? card_ : copies(1 + static_cast<int>(random() % 3));
    const Path file = top / name;
    const bool isTemporary = top != card_ && call != Call::move && call != Call::createFolder;
    const Path place = isTemporary
                           ? file.parent_path() / ("." + file.filename().native() + ".zmpart")
                       : call == Call::createFolder ? file.parent_path()
                                                    : file;
    return {call, place, one(kErrors)};
  }

  Ending endingOf(const Fault& fault, std::size_t chunkSize) {
    prepare();
    fileSystem_.setScript([fault](const CallInfo& info) {
      return Intervention{info.call == fault.call && info.path == fault.place ? fault.error : 0};
    });
    OffloadPlan wanted = plan(3);
    wanted.chunkSize = chunkSize;
    const OffloadResult result = run(wanted);
    Ending ending;
    for (const OffloadedFile& file : result.files) {
      for (const Outcome& outcome : file.outcomes) {
        ending.files[file.file.relativePath].push_back(
            outcome.isVerified() ? "" : outcome.reason()->english());
      }
    }
    for (int number = 1; number <= 3; ++number) {
      // Together, folders are made before it is known that a drive fails.
      for (const std::string& item : copiedTree(number)) {
        if (!item.ends_with('/')) ending.drives.push_back(std::to_string(number) + ":" + item);
      }
    }
    expectNothingPending();
    return ending;
  }

  static constexpr int kFiles = 12;
};

TEST_F(TogetherOrAlone, endsTheSameWithAnyFault) {
  for (unsigned seed = 1; seed <= 150; ++seed) {
    std::mt19937 random(seed);
    const Fault fault = faultOf(random);
    // A buffer that threads cannot share takes files one by one.
    const Ending alone = endingOf(fault, 4096);
    const Ending together = endingOf(fault, kChunk);
    EXPECT_EQ(alone, together) << "seed " << seed << ": " << fault.place << " error " << fault.error
                               << " call " << static_cast<int>(fault.call);
  }
}

}  // namespace
}  // namespace OffloadKit
