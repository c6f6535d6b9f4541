#pragma once

#include "PlatformKit/FileSystem.h"
#include "tests/endtoend/Program.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace RealFaults {

using PlatformKit::Path;

/// Why this process can make no drives of its own, in a sentence; none when it can. The first call
/// gives the process a list of mounts of its own.
std::optional<std::string> whyNoDrives();
/// The same for FaultyFolder.
std::optional<std::string> whyNoFaults();

/// Runs a command of the shell and answers what it wrote, without the last line's end; throws
/// std::runtime_error with what it said when it fails.
std::string mustRun(const std::string& command);

/// A folder with faults on command, empty at the start (tests/faultfs tells the rules). One thread.
class FaultyFolder {
 public:
  /// `point` is made, and beside it the folder below, which is answered by `backing`.
  explicit FaultyFolder(const Path& point, const std::string& rules = {});
  /// Takes it away, also from whoever still uses it.
  ~FaultyFolder();
  FaultyFolder(const FaultyFolder&) = delete;
  FaultyFolder& operator=(const FaultyFolder&) = delete;

  [[nodiscard]] const Path& point() const { return point_; }
  [[nodiscard]] Path backing() const { return point_.native() + ".backing"; }

  void setRules(const std::string& rules) const;
  /// How many calls the first rule has concerned.
  [[nodiscard]] std::int64_t concerned() const;
  /// Waits until the first rule has concerned a call; throws std::runtime_error after 30 seconds.
  void waitForIt() const;
  /// Cuts the connection between the kernel and the folder's process.
  void abort() const;

 private:
  Path point_;
  std::unique_ptr<EndToEnd::Program> process_;
  std::uint32_t connection_ = 0;
};

/// An image that is mounted as a disk of a file system that Debian can make: "ext4", "xfs",
/// "btrfs", or in user space "exfat" and "ntfs". One thread.
class Disk {
 public:
  /// `image` is made when it is not there yet. Throws std::runtime_error when something is missing.
  Disk(const Path& image, const Path& point, const std::string& type);
  ~Disk();
  Disk(const Disk&) = delete;
  Disk& operator=(const Disk&) = delete;

  /// Why there is no such disk; none when there is.
  static std::optional<std::string> whyNone(const std::string& type);

  [[nodiscard]] const Path& point() const { return point_; }
  [[nodiscard]] const Path& image() const { return image_; }
  [[nodiscard]] const std::string& device() const { return device_; }

 private:
  Path image_;
  Path point_;
  std::string device_;
};

}  // namespace RealFaults
