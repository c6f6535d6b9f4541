#include "OffloadKit/Wording/ErrorSentences.h"

#include <cerrno>

namespace OffloadKit {
namespace {

// The highest error number of the Linux kernel's own table (EHWPOISON).
constexpr int kHighestErrorNumber = 133;

}  // namespace

std::string describe(int error) {
  const bool known = error > 0 && error <= kHighestErrorNumber;
  switch (known ? error : EIO) {
    case EPERM:
    case EACCES:
      return "No permission to write here";
    case EIO:
      return "The drive reported a write error";
    case ENXIO:
    case ENODEV:
      return "The drive was disconnected";
    case ENOSPC:
      return "The drive is full";
    default:
      return systemText(error);
  }
}

}  // namespace OffloadKit
