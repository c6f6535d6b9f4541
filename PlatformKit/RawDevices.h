#pragma once

#include "PlatformKit/FileSystem.h"
#include "PlatformKit/Posix/UniqueFd.h"
#include "PlatformKit/Result.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>

namespace PlatformKit {

/// How a block device divides its content.
struct BlockGeometry {
  std::uint32_t blockSize = 0;   ///< bytes
  std::uint64_t blockCount = 0;  ///< blocks
};

/// A device (or a disk image in a file) open for reading. One thread at a time.
class RawDevice {
 public:
  virtual ~RawDevice() = default;

  /// One read of up to `buffer.size()` bytes at `offset`, straight from the device where buffer,
  /// length and offset are whole blocks. Answers how many bytes came; 0 at the end, and also from a
  /// device that was pulled. EINTR: interrupted, nothing was read.
  [[nodiscard]] virtual Result<std::size_t> readAt(std::span<std::byte> buffer,
                                                   std::uint64_t offset) = 0;

  /// Block size and number of blocks, or the error (ENOTTY for a file).
  [[nodiscard]] virtual Result<BlockGeometry> geometry() = 0;

  /// The size by the file's status in bytes; 0 for a device.
  [[nodiscard]] virtual Result<std::uint64_t> fileSize() = 0;

  /// Whether the device is no longer part of the computer. Never for a file.
  [[nodiscard]] virtual bool isGone() = 0;
};

/// What a path leads to.
enum class RawKind { device, regularFile, other };

/// Opens raw devices. Any thread.
class RawDevices {
 public:
  virtual ~RawDevices() = default;

  /// What is at the path, through links too; or the error of looking.
  [[nodiscard]] virtual Result<RawKind> kind(const Path& path) = 0;

  /// Opens the device or file read-only and close-on-exec, with the rights of this process: EACCES
  /// or EPERM where those do not suffice.
  [[nodiscard]] virtual Result<std::unique_ptr<RawDevice>> open(const Path& path) = 0;

  /// Takes over a descriptor that somebody else opened.
  [[nodiscard]] virtual std::unique_ptr<RawDevice> adopt(UniqueFd descriptor) = 0;
};

/// A way to have a device opened with more rights than this process has, usually after the system
/// has asked the user for a password.
class PrivilegedOpener {
 public:
  /// What came of it: a descriptor (read-only, close-on-exec), or why there is none.
  struct Answer {
    enum class Kind {
      opened,
      declined,     ///< the user or the system's policy said no; nobody else is to be asked
      unavailable,  ///< this way does not exist here; another may
    };
    Kind kind = Kind::unavailable;
    UniqueFd descriptor;
  };

  virtual ~PrivilegedOpener() = default;

  /// Blocks while the system asks the user, which can take minutes. Any thread but the one that
  /// draws the screen.
  [[nodiscard]] virtual Answer openReadOnly(const Path& device) = 0;
};

/// Unmounts volumes for this user.
class Unmounter {
 public:
  virtual ~Unmounter() = default;

  /// Unmounts every mounted volume of the whole disk ("sdb") and answers whether none is mounted
  /// any more. Blocks; any thread but the one that draws the screen.
  [[nodiscard]] virtual bool unmountDisk(const std::string& identifier) = 0;
};

}  // namespace PlatformKit
