#include "DeviceKit/BlockDeviceSource.h"
#include "DeviceKit/DeviceError.h"
#include "PlatformKit/Testing/FakeRawDevices.h"
#include "PlatformKit/Testing/TempFolder.h"

#include <cerrno>

#include <gtest/gtest.h>

namespace DeviceKit {
namespace {

using PlatformKit::AlignedBuffer;
using PlatformKit::Testing::FakeRawDevices;
using PlatformKit::Testing::pattern;

class BlockDevice : public ::testing::Test {
 protected:
  BlockDeviceSource open() { return {std::move(devices_.open("/dev/card").value()), "/dev/card"}; }

  // Reads into memory that is aligned to pages plus `misalignment` bytes.
  static std::string read(BlockDeviceSource& source, std::uint64_t offset, std::size_t count,
                          std::size_t misalignment = 0) {
    AlignedBuffer buffer(count + misalignment);
    const auto bytes = buffer.bytes().subspan(misalignment);
    std::fill(bytes.begin(), bytes.end(), std::byte{0xEE});
    const std::size_t got = source.read(offset, bytes);
    return {reinterpret_cast<const char*>(bytes.data()), got};
  }

  const std::string content_ = pattern(16 * 512);
  FakeRawDevices devices_;
  FakeRawDevices::Device& device_ = devices_.add("/dev/card", content_);
};

TEST_F(BlockDevice, givesAnyRangeAndNothingBehindItsEnd) {
  auto source = open();
  EXPECT_EQ(source.size(), content_.size());
  for (const auto& [offset, count] : {std::pair<std::size_t, std::size_t>{0, 8192},
                                      {700, 10},
                                      {511, 2},
                                      {512, 512},
                                      {8191, 100},
                                      {100, 8000}}) {
    EXPECT_EQ(read(source, offset, count), content_.substr(offset, count));
    EXPECT_EQ(read(source, offset, count, 1), content_.substr(offset, count));
  }
  EXPECT_EQ(read(source, 8192, 10), "");
  EXPECT_EQ(read(source, UINT64_MAX, 10), "");
  EXPECT_EQ(read(source, 0, 0), "");
  EXPECT_EQ(source.badReads(), 0U);
}

TEST_F(BlockDevice, fillsEveryBlockThatCannotBeReadWithZerosAndCountsIt) {
  device_.badBlocks = {{2, EIO}, {3, ENODATA}, {9, EIO}};
  auto source = open();
  std::string expected = content_;
  for (const std::size_t block : {2U, 3U, 9U}) expected.replace(block * 512, 512, 512, '\0');
  EXPECT_EQ(read(source, 0, 8192), expected);
  EXPECT_EQ(source.badReads(), 3U);
  // Ten bytes of a bad block cost the whole block, and each read counts anew.
  EXPECT_EQ(read(source, 1030, 10), std::string(10, '\0'));
  EXPECT_EQ(source.badReads(), 4U);
}

TEST_F(BlockDevice, goesOnAfterInterruptionsAndShortReads) {
  device_.interruptions = 3;
  device_.longestRead = 700;
  auto source = open();
  EXPECT_EQ(read(source, 0, 8192), content_);
  device_.badBlocks = {{5, EIO}};
  device_.interruptions = 2;
  std::string expected = content_;
  expected.replace(5 * 512, 512, 512, '\0');
  EXPECT_EQ(read(source, 0, 8192), expected);
  EXPECT_EQ(source.badReads(), 1U);
}

TEST_F(BlockDevice, tellsADeviceThatIsGoneFromOneThatCannotBeRead) {
  for (std::uint64_t block = 0; block < 16; ++block) device_.badBlocks[block] = EIO;
  auto source = open();
  EXPECT_EQ(read(source, 0, 8192), std::string(8192, '\0'));
  EXPECT_EQ(source.badReads(), 16U);

  device_.badBlocks.clear();
  device_.goneAfter = 5000;
  EXPECT_EQ(read(source, 0, 4096), content_.substr(0, 4096));
  try {
    static_cast<void>(read(source, 4096, 4096));
    ADD_FAILURE();
  } catch (const DeviceError& error) {
    EXPECT_EQ(error, DeviceError::readFailed(4096, ENODEV));
    EXPECT_STREQ(error.what(), "Read failed at offset 4096: No such device");
  }
}

TEST_F(BlockDevice, takesADiskImageInAFileForBlocksOf512Bytes) {
  device_.blockSize = 0;
  device_.content.resize(1000);
  auto source = open();
  EXPECT_EQ(source.size(), 1000U);
  EXPECT_EQ(read(source, 900, 500), content_.substr(900, 100));
  device_.badBlocks = {{1, EIO}};
  EXPECT_EQ(read(source, 0, 1000), content_.substr(0, 512) + std::string(488, '\0'));
  EXPECT_EQ(source.badReads(), 1U);
}

TEST_F(BlockDevice, refusesWhatHasNoSizeAndClosesIt) {
  device_.content.clear();
  try {
    open();
    ADD_FAILURE();
  } catch (const DeviceError& error) {
    EXPECT_STREQ(error.what(), "/dev/card is not a readable file or device.");
  }
  EXPECT_EQ(devices_.openDevices(), 0);
}

}  // namespace
}  // namespace DeviceKit
