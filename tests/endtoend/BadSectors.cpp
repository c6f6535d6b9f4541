// BadSectors BACKING MOUNTPOINT [START LENGTH]...: serves the file BACKING as MOUNTPOINT/img, of
// which no byte between START and START + LENGTH can be read. Says "ready" once it does so; ends
// when it is unmounted, or with the program that started it.
#define FUSE_USE_VERSION 31

#include "PlatformKit/Posix/UniqueFd.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <fuse.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr std::string_view kFile = "/img";

struct Served {
  struct Range {
    off_t start;
    off_t end;
  };

  PlatformKit::UniqueFd backing;
  std::vector<Range> bad;
};

const Served& served() {
  return *static_cast<const Served*>(fuse_get_context()->private_data);
}

void* onMounted(fuse_conn_info* /*connection*/, fuse_config* /*settings*/) {
  std::puts("ready");
  std::fflush(stdout);
  return fuse_get_context()->private_data;
}

int attributes(const char* path, struct stat* status, fuse_file_info* /*file*/) {
  if (path == kFile) return fstat(served().backing.get(), status) == 0 ? 0 : -errno;
  if (std::strcmp(path, "/") != 0) return -ENOENT;
  status->st_mode = S_IFDIR | 0755;
  status->st_nlink = 2;
  return 0;
}

int readBacking(const char* /*path*/, char* buffer, std::size_t size, off_t offset,
                fuse_file_info* /*file*/) {
  const off_t end = offset + static_cast<off_t>(size);
  const auto& bad = served().bad;
  if (std::any_of(bad.begin(), bad.end(), [&](const Served::Range& range) {
        return offset < range.end && range.start < end;
      })) {
    return -EIO;
  }
  const ssize_t count = pread(served().backing.get(), buffer, size, offset);
  return count < 0 ? -errno : static_cast<int>(count);
}

}  // namespace

int main(int argc, char** argv) {
  prctl(PR_SET_PDEATHSIG, SIGTERM);
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  if (arguments.size() < 2 || arguments.size() % 2 != 0) return 2;
  Served content;
  content.backing = PlatformKit::UniqueFd(open(arguments[0].c_str(), O_RDONLY | O_CLOEXEC));
  if (!content.backing.valid()) return 1;
  for (std::size_t i = 2; i < arguments.size(); i += 2) {
    const off_t start = std::stoll(arguments[i]);
    content.bad.push_back({start, start + std::stoll(arguments[i + 1])});
  }
  fuse_operations operations{};
  operations.init = onMounted;
  operations.getattr = attributes;
  operations.read = readBacking;
  std::array<std::string, 6> command = {argv[0], "-f", "-s", "-o", "ro", arguments[1]};
  std::array<char*, 6> pointers{};
  std::transform(command.begin(), command.end(), pointers.begin(),
                 [](std::string& text) { return text.data(); });
  return fuse_main(static_cast<int>(pointers.size()), pointers.data(), &operations, &content);
}
