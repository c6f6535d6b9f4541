#include "DeviceKit/BlockDeviceSource.h"
#include "DeviceKit/MemorySource.h"
#include "OffloadKit/Copying/CardImager.h"
#include "tests/OffloadKit/OffloadFixture.h"

#include <cerrno>
#include <fstream>
#include <numeric>

namespace OffloadKit {
namespace {

using ::testing::Each;
using ::testing::IsEmpty;

class Imager : public OffloadFixture {
 protected:
  CardImageResult imageOf(DeviceKit::ByteSource& source) {
    progress_.clear();
    Pipeline pipeline(1, kChunk);
    return CardImager::write(source, *held(drive(1)), drive(1), "card.img",
                             HashKit::HashAlgorithm::md5, pipeline,
                             {[this] { return polls_++ == cancelAt_; },
                              {},
                              [this](double bytes) { progress_.push_back(bytes); }});
  }
  CardImageResult imageOf(const std::string& device) {
    DeviceKit::BlockDeviceSource source(std::move(rawDevices_.open(device).value()), device);
    return imageOf(source);
  }
  static std::string md5(const std::string& content) {
    return HashKit::hash(HashKit::HashAlgorithm::md5, std::as_bytes(std::span(content)));
  }
  void expectFailure(const CardImageResult& result, const std::string& reason) {
    EXPECT_EQ(result.outcome, CardImageResult::Outcome::failed(because(reason)));
    EXPECT_EQ(result.hash, std::nullopt);
    EXPECT_FALSE(std::filesystem::exists(image_));
    expectNothingPending();
  }

  const Path image_ = drive(1) / "Card Image/card.img";
  std::vector<double> progress_;
  int polls_ = 0;
  int cancelAt_ = -1;
};

TEST_F(Imager, savesEveryByteOnceReadAndTwiceCounted) {
  for (const std::size_t size : {std::size_t{0}, std::size_t{512}, 3 * kChunk, 5 * kChunk + 1536}) {
    std::filesystem::remove(image_);
    const std::string content = pattern(size);
    auto& device = rawDevices_.add("/dev/card", content);
    if (size == 0) device.blockSize = 0;
    DeviceKit::MemorySource empty({});
    const auto result = size == 0 ? imageOf(empty) : imageOf("/dev/card");
    EXPECT_TRUE(result.outcome.isVerified());
    EXPECT_EQ(result.size, size);
    EXPECT_EQ(result.hash, md5(content));
    EXPECT_EQ(result.relativePath, "Card Image/card.img");
    EXPECT_EQ(readFile(image_), content);
    EXPECT_EQ(std::accumulate(progress_.begin(), progress_.end(), 0.0),
              2.0 * static_cast<double>(size));
    expectNothingPending();
  }
}

TEST_F(Imager, storesUnreadableBlocksAsCountedZerosWhateverTheErrorIs) {
  std::string content = pattern(4 * kChunk);
  auto& device = rawDevices_.add("/dev/card", content);
  device.badBlocks = {{1, EIO}, {200, ENODATA}, {201, EILSEQ}, {511, EREMOTEIO}};
  const auto result = imageOf("/dev/card");
  for (const auto& [block, error] : device.badBlocks) content.replace(block * 512, 512, 512, '\0');
  EXPECT_TRUE(result.outcome.isVerified());
  EXPECT_EQ(result.unreadableBlocks, 4U);
  EXPECT_EQ(readFile(image_), content);
  EXPECT_EQ(result.hash, md5(content));

  // A card that gives nothing at all, but is there, is an image of zeros that says so.
  std::filesystem::remove(image_);
  for (std::uint64_t block = 0; block < content.size() / 512; ++block)
    device.badBlocks[block] = EIO;
  const auto zeros = imageOf("/dev/card");
  EXPECT_EQ(zeros.unreadableBlocks, content.size() / 512);
  EXPECT_THAT(readFile(image_), Each('\0'));
}

TEST_F(Imager, failsWhenTheCardIsPulled) {
  for (const std::uint64_t after : {std::uint64_t{0}, std::uint64_t{2 * kChunk + 700}}) {
    auto& device = rawDevices_.add("/dev/card", pattern(4 * kChunk));
    device.gone = false;
    device.goneAfter = after;
    const auto result = imageOf("/dev/card");
    expectFailure(result, "The card stopped responding");
    EXPECT_EQ(result.size, 4 * kChunk);
  }
  EXPECT_EQ(rawDevices_.openDevices(), 0);
}

TEST_F(Imager, stopsBeforeAnyChunkAndLeavesNothing) {
  rawDevices_.add("/dev/card", pattern(4 * kChunk));
  for (cancelAt_ = 0; cancelAt_ < 4; ++cancelAt_) {
    polls_ = 0;
    EXPECT_EQ(offloadErrorOf([&] { imageOf("/dev/card"); }), "The offload was stopped.");
    EXPECT_THAT(tree(drive(1)), ::testing::ElementsAre("Card Image/"));
    expectNothingPending();
  }
}

TEST_F(Imager, neverReplacesAnImageAndClearsALeftover) {
  rawDevices_.add("/dev/card", pattern(kChunk));
  writeFile(drive(1) / "Card Image/.card.img.zmpart", "left over");
  EXPECT_TRUE(imageOf("/dev/card").outcome.isVerified());
  const auto again = imageOf("/dev/card");
  EXPECT_EQ(*again.outcome.reason(), because("An image with this name is already there"));
  EXPECT_EQ(readFile(image_), pattern(kChunk));
  expectNothingPending();
}

TEST_F(Imager, neverTakesSomebodyElsesFileForItsImage) {
  rawDevices_.add("/dev/card", pattern(2 * kChunk));
  fileSystem_.setScript([&](const CallInfo& info) {
    const bool isImage = info.path.filename() == ".card.img.zmpart";
    if (isImage && info.call == Call::status) replaceFile(info.path);
    return Intervention{};
  });
  EXPECT_FALSE(imageOf("/dev/card").outcome.isVerified());
  EXPECT_FALSE(std::filesystem::exists(image_));
}

TEST_F(Imager, failsWithASentenceWhateverTheDriveDoes) {
  rawDevices_.add("/dev/card", pattern(4 * kChunk));
  const std::tuple<Call, int, const char*> faults[] = {
      {Call::createFolder, EACCES, "No permission to write here"},
      {Call::createFile, EROFS, "Read-only file system"},
      {Call::write, ENOSPC, "The drive is full"},
      {Call::finishWriteback, EIO, "The drive reported a write error"},
      {Call::flush, ENODEV, "The drive was disconnected"},
      {Call::openForReading, EIO, "The image couldn't be read back"},
      {Call::read, EIO, "The image couldn't be read back"},
      {Call::move, EIO, "The drive reported a write error"},
      {Call::flushFolder, EIO, "The drive reported a write error"},
  };
  for (const auto& [call, error, reason] : faults) {
    fileSystem_.setScript(FaultyFileSystem::failing(call, "Card Image", error));
    expectFailure(imageOf("/dev/card"), reason);
  }
  fileSystem_.setScript([](const CallInfo& info) {
    Intervention intervention;
    intervention.flipBit = info.call == Call::write && info.offset == 2 * kChunk;
    return intervention;
  });
  expectFailure(imageOf("/dev/card"), "The image didn't match what was read from the card");
}

TEST(ImageNames, sayCardAndMinute) {
  setenv("TZ", "UTC-2", 1);
  tzset();
  const PlatformKit::Date date(std::chrono::seconds(1'746'274'020));  // 3 May 2025, 12:07 UTC
  EXPECT_EQ(CardImager::fileName("EOS_DIGITAL", date), "EOS_DIGITAL_2025-05-03_1407.img");
  EXPECT_EQ(CardImager::fileName("", date), "Card_2025-05-03_1407.img");
  EXPECT_EQ(CardImager::fileName("A/B: 1.", date), "A-B- 1_2025-05-03_1407.img");
  EXPECT_LE(CardImager::fileName(std::string(255, 'n'), date).size() + 8, 255U);
  unsetenv("TZ");
  tzset();
}

}  // namespace
}  // namespace OffloadKit
