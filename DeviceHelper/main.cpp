#include "PlatformKit/Posix/DescriptorPassing.h"

#include <cerrno>
#include <cstdio>
#include <string>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

// zephrimark-open-device /dev/NAME: opens one block device for reading and hands the descriptor
// back over standard output, a socket. pkexec runs it as the administrator, with an argument and
// streams that an ordinary user chose. It reads no environment and no file, and writes none.

namespace {

int refuse(const std::string& sentence) {
  std::fprintf(stderr, "zephrimark-open-device: %s\n", sentence.c_str());
  return 1;
}

int refuse(const std::string& what, int error) {
  return refuse(what + ": " + std::generic_category().message(error) + ".");
}

// A name right in /dev, where only the administrator can put anything.
bool isDeviceName(std::string_view path) {
  constexpr std::string_view kFolder = "/dev/";
  if (!path.starts_with(kFolder)) return false;
  const std::string_view name = path.substr(kFolder.size());
  return !name.empty() && name != "." && name != ".." && name.find('/') == std::string_view::npos;
}

int open(const char* path) {
  struct stat status {};
  if (fstat(STDOUT_FILENO, &status) != 0 || !S_ISSOCK(status.st_mode)) {
    return refuse("Standard output must be a socket.");
  }
  // Looked at before it is opened: opening alone starts a watchdog, or winds a tape.
  if (lstat(path, &status) != 0) return refuse("The device could not be found", errno);
  if (!S_ISBLK(status.st_mode)) return refuse("The path is not a block device.");
  const PlatformKit::UniqueFd device(
      ::open(path, O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  if (!device.valid()) return refuse("The device could not be opened", errno);
  if (fstat(device.get(), &status) != 0 || !S_ISBLK(status.st_mode)) {
    return refuse("The path is not a block device.");
  }
  const int error = PlatformKit::sendDescriptor(STDOUT_FILENO, device.get());
  return error == 0 ? 0 : refuse("The device could not be handed over", error);
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) return refuse("Needs one argument, the path of a device.");
  if (!isDeviceName(arguments[1])) return refuse("The path must be a plain name in /dev.");
  return open(arguments[1]);
}
