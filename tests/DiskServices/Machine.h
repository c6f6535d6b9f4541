#pragma once

#include "PlatformKit/Posix/UniqueFd.h"
#include "PlatformKit/RawDevices.h"
#include "PlatformKit/Testing/TempFolder.h"

#include <set>
#include <string>
#include <vector>

#include <sys/types.h>

namespace DiskServices::Testing {

using Kind = PlatformKit::PrivilegedOpener::Answer::Kind;

/// The numbers of this process's open descriptors.
std::set<int> openDescriptors();

/// An image file attached as a block device, as the administrator may. The kernel detaches it when
/// this object, or the process, has ended and nobody else has it open.
class LoopDevice {
 public:
  /// Throws std::system_error when there is none to be had.
  explicit LoopDevice(const PlatformKit::Path& image);

  [[nodiscard]] const PlatformKit::Path& path() const { return path_; }
  /// As "loop0".
  [[nodiscard]] std::string name() const { return path_.filename(); }

 private:
  PlatformKit::Path path_;
  PlatformKit::UniqueFd fd_;
};

/// A program that runs until this object's end, or this process's.
class Daemon {
 public:
  /// Its environment and standard error are ours.
  explicit Daemon(std::vector<std::string> command);
  ~Daemon();
  Daemon(const Daemon&) = delete;
  Daemon& operator=(const Daemon&) = delete;

  /// Its next line of output without the end; empty when it has ended.
  std::string readLine();
  /// Ends it; what it has said can still be read.
  void end();

 private:
  pid_t process_ = -1;
  PlatformKit::UniqueFd output_;
};

/// A bus of our own that everybody may use. For this process it is the system bus until the end of
/// this object.
class PrivateBus {
 public:
  explicit PrivateBus(const PlatformKit::Path& socket);
  ~PrivateBus();
  PrivateBus(const PrivateBus&) = delete;
  PrivateBus& operator=(const PrivateBus&) = delete;

 private:
  PlatformKit::Testing::TempFolder folder_;
  Daemon daemon_;
};

}  // namespace DiskServices::Testing
