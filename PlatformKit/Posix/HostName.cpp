#include "PlatformKit/Posix/HostName.h"

#include <array>

#include <unistd.h>

namespace PlatformKit {

std::string hostName() {
  std::array<char, 256> name{};
  // The last byte stays 0: a name that is cut off need not end in one.
  if (gethostname(name.data(), name.size() - 1) != 0 || name[0] == '\0') return "localhost";
  return name.data();
}

}  // namespace PlatformKit
