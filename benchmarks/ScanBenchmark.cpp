// Scans a card of many small files, next to a bare walk of the same folders that only adds up sizes
// (opendir, readdir, lstat). Both run in turn; medians are printed. Budget: at most 1.5 times the
// bare walk plus one second for 200,000 files.
#include "OffloadKit/Card/SourceScan.h"
#include "PlatformKit/Linux/LinuxFileSystem.h"
#include "PlatformKit/Linux/LinuxVolumes.h"
#include "PlatformKit/Testing/TempFolder.h"
#include "benchmarks/Timing.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

std::uint64_t bareWalk(const std::string& folder) {
  std::uint64_t bytes = 0;
  DIR* stream = opendir(folder.c_str());
  if (stream == nullptr) std::abort();
  while (const dirent* entry = readdir(stream)) {
    const std::string name = entry->d_name;
    if (name == "." || name == "..") continue;
    struct stat status {};
    if (fstatat(dirfd(stream), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) std::abort();
    bytes += S_ISDIR(status.st_mode) ? bareWalk(folder + "/" + name)
                                     : static_cast<std::uint64_t>(status.st_size);
  }
  closedir(stream);
  return bytes;
}

}  // namespace

int main(int argc, char** argv) {
  const int files = argc > 1 ? std::atoi(argv[1]) : 200'000;
  constexpr int kFilesPerFolder = 1000;
  const PlatformKit::Testing::TempFolder card;
  for (int i = 0; i < files; ++i) {
    char name[64];
    std::snprintf(name, sizeof name, "DCIM/%03dCANON/IMG_%d.CR3", 100 + i / kFilesPerFolder,
                  (i * 7919) % files);
    const auto path = card.path() / name;
    if (i % kFilesPerFolder == 0) std::filesystem::create_directories(path.parent_path());
    const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
    if (fd < 0 || write(fd, "x", 1) != 1) std::abort();
    close(fd);
  }

  PlatformKit::LinuxFileSystem fileSystem;
  PlatformKit::LinuxVolumes volumes;
  const PlatformKit::SystemClock clock;
  std::vector<double> bare;
  std::vector<double> ours;
  for (int round = 0; round < 5; ++round) {
    bare.push_back(secondsOf([&] { bareWalk(card.path()); }));
    ours.push_back(secondsOf([&] {
      const auto found = OffloadKit::scan({fileSystem, volumes, clock}, card.path());
      if (found.files.size() != static_cast<std::size_t>(files)) std::abort();
    }));
  }
  const double limit = 1.5 * median(bare) + 1.0;
  std::printf("scan and sort %d files: %.2f s, bare walk %.2f s, budget %.2f s\n", files,
              median(ours), median(bare), limit);
  return median(ours) <= limit ? 0 : 1;
}
