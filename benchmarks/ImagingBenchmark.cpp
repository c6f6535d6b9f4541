// Images a loop device that reads past the cache, next to dd, which copies it, flushes the copy and
// reads it back without comparing anything. Both run in turn, each first in every other round;
// medians are printed. Budget: at least 0.9 of dd's speed.
//   ImagingBenchmark [MEBIBYTES [FOLDER]]
#include "DeviceKit/BlockDeviceSource.h"
#include "OffloadKit/Copying/CardImager.h"
#include "OffloadKit/Records/OffloadPlan.h"
#include "PlatformKit/Linux/LinuxFileSystem.h"
#include "PlatformKit/Linux/LinuxRawDevices.h"
#include "PlatformKit/Posix/UniqueFd.h"
#include "PlatformKit/Testing/TempFolder.h"
#include "benchmarks/Timing.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace {

using PlatformKit::Path;

/// An image file as a device, which the kernel detaches at the end of this object or process.
class LoopDevice {
 public:
  explicit LoopDevice(const Path& file) {
    const std::string command = "losetup -f -r --direct-io=on --show '" + file.native() + "'";
    std::array<char, 64> line{};
    std::FILE* output = popen(command.c_str(), "r");
    if (output != nullptr && std::fgets(line.data(), line.size(), output) != nullptr) {
      path_ = line.data();
      path_.erase(path_.find('\n'));
    }
    if (output == nullptr || pclose(output) != 0) return;
    fd_ = PlatformKit::UniqueFd(open(path_.c_str(), O_RDONLY | O_CLOEXEC));
    if (std::system(("losetup -d " + path_).c_str()) != 0) std::abort();
  }

  [[nodiscard]] bool isAttached() const { return fd_.valid(); }
  [[nodiscard]] const std::string& path() const { return path_; }

 private:
  std::string path_;
  PlatformKit::UniqueFd fd_;
};

void writeRandom(const Path& path, std::size_t mebibytes) {
  std::ofstream stream(path, std::ios::binary);
  std::vector<std::uint64_t> piece((std::size_t{1} << 20) / sizeof(std::uint64_t));
  std::mt19937_64 random(1);
  for (std::size_t i = 0; i < mebibytes; ++i) {
    for (std::uint64_t& word : piece) word = random();
    stream.write(reinterpret_cast<const char*>(piece.data()), std::streamsize{1} << 20);
  }
  if (!stream.flush()) std::abort();
}

void imageWithOurs(const std::string& device, const Path& folder, std::uint64_t size) {
  PlatformKit::LinuxFileSystem fileSystem;
  PlatformKit::LinuxRawDevices devices;
  auto opened = devices.open(device);
  if (!opened.ok()) std::abort();
  DeviceKit::BlockDeviceSource source(std::move(opened.value()), device);
  const auto held = fileSystem.openFolder(folder, PlatformKit::Mounts::refused);
  OffloadKit::Pipeline pipeline(1, OffloadKit::kUsualChunkSize);
  const auto result = OffloadKit::CardImager::write(source, *held.value(), folder, "ours.img",
                                                    HashKit::HashAlgorithm::xxh64, pipeline,
                                                    {[] { return false; }, {}, [](double) {}});
  if (!result.outcome.isVerified() || result.size != size) std::abort();
}

void imageWithDD(const std::string& device, const Path& image) {
  const std::string copy = "dd if=" + device + " of='" + image.native() +
                           "' bs=8M iflag=direct conv=fsync status=none && dd if='" +
                           image.native() + "' of=/dev/null bs=8M iflag=direct status=none";
  if (std::system(copy.c_str()) != 0) std::abort();
}

}  // namespace

int main(int argc, char** argv) {
  const std::size_t mebibytes = argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 1024;
  if (argc > 2) setenv("TMPDIR", argv[2], 1);
  if (geteuid() != 0) {
    std::puts("card image: skipped, since only the administrator can make block devices");
    return 0;
  }
  const PlatformKit::Testing::TempFolder folder;
  writeRandom(folder.path() / "card", mebibytes);
  sync();
  const LoopDevice card(folder.path() / "card");
  if (!card.isAttached()) {
    std::puts("card image: skipped, since there are no loop devices");
    return 0;
  }

  std::vector<double> ours;
  std::vector<double> theirs;
  const Path images = folder.path() / "images";
  for (int round = 0; round < 5; ++round) {
    for (const bool our : {round % 2 == 0, round % 2 != 0}) {
      std::filesystem::create_directory(images);
      (our ? ours : theirs).push_back(secondsOf([&] {
        if (our) imageWithOurs(card.path(), images, std::uint64_t{mebibytes} << 20);
        if (!our) imageWithDD(card.path(), images / "dd.img");
      }));
      std::filesystem::remove_all(images);
      // What the file system still does about the last image must not slow down the next.
      sync();
    }
  }
  const double ratio = median(theirs) / median(ours);
  std::printf(
      "image and verify a card of %zu MiB: %.2f s, dd %.2f s, %.2f of dd's speed "
      "(budget 0.90)\n",
      mebibytes, median(ours), median(theirs), ratio);
  return ratio >= 0.9 ? 0 : 1;
}
