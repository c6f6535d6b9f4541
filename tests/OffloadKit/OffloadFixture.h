#pragma once

#include "OffloadKit/OffloadEngine.h"
#include "PlatformKit/Linux/LinuxFileSystem.h"
#include "PlatformKit/Linux/LinuxVolumes.h"
#include "PlatformKit/Testing/FakeRawDevices.h"
#include "PlatformKit/Testing/FakeVolumes.h"
#include "PlatformKit/Testing/FaultyFileSystem.h"
#include "PlatformKit/Testing/TempFolder.h"
#include "tests/Because.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OffloadKit {

using Outcome = OffloadedFile::Outcome;
using PlatformKit::Path;
using PlatformKit::Testing::Call;
using PlatformKit::Testing::CallInfo;
using PlatformKit::Testing::FaultyFileSystem;
using PlatformKit::Testing::Intervention;
using PlatformKit::Testing::pattern;
using PlatformKit::Testing::readFile;
using PlatformKit::Testing::tree;
using PlatformKit::Testing::writeFile;

/// A card and three drives in a temporary folder. Every drive is a volume with a name ("T1", "T2",
/// "T3"), a device and a terabyte of room; faults can be put on every call.
class OffloadFixture : public ::testing::Test {
 protected:
  static constexpr std::size_t kChunk = 64 * 1024;

  OffloadFixture();

  /// Where drive `number` (1 to 3) is mounted, and the folder on it that receives the copies.
  [[nodiscard]] Path drive(int number) const;
  [[nodiscard]] Path copies(int number) const { return drive(number) / "2026-10-07" / "A001"; }
  static PlatformKit::DeviceNumber device(int number) { return {8, static_cast<unsigned>(number)}; }
  void setRoom(int number, std::uint64_t bytes);
  /// Whether the drive is one that writes a moved file's size only when it is flushed again.
  void setFat(int number, bool isFat);

  /// A folder held open, as a run holds it, made if it is not there.
  std::unique_ptr<PlatformKit::Folder> held(const Path& folder);

  /// Puts a file on the card, modified at a date with a fraction of a second.
  void addFile(const std::string& relativePath, const std::string& content);
  [[nodiscard]] OffloadPlan plan(int drives = 2) const;
  /// Runs the plan in a new engine.
  OffloadResult run(const OffloadPlan& plan);

  /// Puts another file, of 1,000 bytes, in the place of one; if the file system gives the old one's
  /// number away, one with that number.
  void replaceFile(const Path& file);

  /// Every file of the card lies on the drive, byte for byte and with its date, and nothing else
  /// but the records of runs.
  void expectIdentical(int number) const;
  /// No temporary copy is left on any drive and no file open.
  void expectNothingPending() const;
  /// What lies in the copies' folder on a drive, without the records of runs.
  [[nodiscard]] std::vector<std::string> copiedTree(int number) const;
  /// What a scan of the card reads: names, content and dates.
  [[nodiscard]] std::vector<std::string> cardState() const;

  PlatformKit::Testing::TempFolder folder_;
  const Path card_ = folder_.path() / "card";
  PlatformKit::LinuxFileSystem linux_;
  PlatformKit::LinuxVolumes linuxVolumes_;
  PlatformKit::SystemClock clock_;
  FaultyFileSystem fileSystem_{linux_};
  PlatformKit::Testing::FakeVolumes volumes_{linuxVolumes_};
  PlatformKit::System system_{fileSystem_, volumes_, clock_};
  PlatformKit::Testing::FakeRawDevices rawDevices_;
  DeviceKit::RawDeviceAccess rawDeviceAccess_{rawDevices_, {}};
};

/// The error that `action` throws; fails the test when it throws none.
template <class Action>
std::string offloadErrorOf(Action action) {
  try {
    action();
  } catch (const OffloadError& error) {
    return error.what();
  }
  ADD_FAILURE() << "no OffloadError was thrown";
  return {};
}

}  // namespace OffloadKit
