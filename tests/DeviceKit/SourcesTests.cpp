#include "DeviceKit/BlockDeviceSource.h"
#include "DeviceKit/DeviceError.h"
#include "DeviceKit/FileSource.h"
#include "DeviceKit/MemorySource.h"
#include "DeviceKit/SourceOpener.h"
#include "PlatformKit/Linux/LinuxRawDevices.h"
#include "PlatformKit/Testing/FakeRawDevices.h"
#include "PlatformKit/Testing/TempFolder.h"

#include <cerrno>

#include <gtest/gtest.h>

namespace DeviceKit {
namespace {

using PlatformKit::Testing::pattern;
using PlatformKit::Testing::TempFolder;
using PlatformKit::Testing::writeFile;

std::string read(ByteSource& source, std::uint64_t offset, std::size_t count) {
  std::vector<std::byte> buffer(count);
  const std::size_t got = source.read(offset, buffer);
  return {reinterpret_cast<const char*>(buffer.data()), got};
}

class Sources : public ::testing::Test {
 protected:
  std::string failureToOpen(const PlatformKit::Path& path) {
    try {
      SourceOpener::open(devices_, access_, path);
    } catch (const DeviceError& error) {
      return error.what();
    }
    return "none";
  }

  TempFolder folder_;
  PlatformKit::LinuxRawDevices devices_;
  RawDeviceAccess access_{devices_, {}};
};

TEST_F(Sources, giveTheSameBytesFromMemoryAndFile) {
  const std::string content = pattern(10'000);
  writeFile(folder_.path() / "file", content);
  const auto bytes = std::as_bytes(std::span(content));
  MemorySource memory({bytes.begin(), bytes.end()});
  EXPECT_EQ(memory.descriptionForReport(), "memory(10000 bytes)");
  const auto file = SourceOpener::open(devices_, access_, folder_.path() / "file");
  EXPECT_EQ(file->descriptionForReport(), (folder_.path() / "file").native());
  for (ByteSource* source : {static_cast<ByteSource*>(&memory), file.get()}) {
    EXPECT_EQ(source->size(), 10'000U);
    EXPECT_EQ(read(*source, 0, 10'000), content);
    EXPECT_EQ(read(*source, 9'990, 100), content.substr(9'990));
    EXPECT_EQ(read(*source, 10'000, 1), "");
    EXPECT_EQ(read(*source, UINT64_MAX, 1), "");
  }
  std::filesystem::resize_file(folder_.path() / "file", 500);
  EXPECT_EQ(read(*file, 400, 1000), content.substr(400, 100));
  std::filesystem::resize_file(folder_.path() / "file", 20'000);
  EXPECT_EQ(read(*file, 0, 30'000).size(), 10'000U);
}

TEST(FileSources, failWithTheOffsetOfTheFirstByteThatWasNotRead) {
  PlatformKit::Testing::FakeRawDevices devices;
  auto& device = devices.add("file", pattern(4096));
  device.blockSize = 0;
  device.longestRead = 1000;
  device.interruptions = 2;
  device.badBlocks = {{4, EIO}};
  FileSource file(devices, "file");
  EXPECT_EQ(read(file, 0, 1500).size(), 1500U);
  try {
    static_cast<void>(read(file, 500, 3000));
    ADD_FAILURE();
  } catch (const DeviceError& error) {
    EXPECT_EQ(error, DeviceError::readFailed(1500, EIO));
  }
}

TEST_F(Sources, refuseWhatIsNeitherFileNorDevice) {
  const std::string folder = folder_.path();
  EXPECT_EQ(failureToOpen(folder), folder + " is not a readable file or device.");
  EXPECT_EQ(failureToOpen(folder + "/none"),
            "Could not open " + folder + "/none: No such file or directory");
  EXPECT_EQ(failureToOpen("/dev/null"), "/dev/null is not a readable file or device.");
  std::filesystem::create_symlink("none", folder_.path() / "dangling");
  EXPECT_EQ(failureToOpen(folder + "/dangling"),
            "Could not open " + folder + "/dangling: No such file or directory");
}

}  // namespace
}  // namespace DeviceKit
