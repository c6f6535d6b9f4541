#pragma once

#include "PlatformKit/Testing/FakeRawDevices.h"
#include "PlatformKit/Testing/FakeVolumeWatcher.h"
#include "PlatformKit/Testing/ManualClock.h"
#include "PlatformKit/Testing/TempFolder.h"
#include "ZephrimarkOffload/Model/OffloadModel.h"
#include "tests/Because.h"

#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <set>

#include <QCoreApplication>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ZephrimarkOffload {

using PlatformKit::Path;

/// Runs the event loop until `holds` or ten seconds have passed; answers whether it holds.
template <class Condition>
bool waitUntil(Condition holds) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (!holds() && std::chrono::steady_clock::now() < end) {
    QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 20);
  }
  return holds();
}

/// Disks that a test makes up. A path on a dead volume keeps whoever asks waiting until the end.
class FakeDiskQueries final : public DiskQueries {
 public:
  ~FakeDiskQueries() override = default;

  /// Changes the made-up state.
  template <class Change>
  void change(Change apply) {
    const std::lock_guard held(lock_);
    apply(*this);
  }
  void revive() {
    {
      const std::lock_guard held(lock_);
      dead_.clear();
    }
    revived_.notify_all();
  }

  template <class Answer>
  auto asked(const Path& path, Answer answer) {
    std::unique_lock held(lock_);
    revived_.wait(held, [&] { return !dead_.contains(path); });
    return answer();
  }

  [[nodiscard]] std::vector<PlatformKit::MountedVolume> volumes() override {
    const std::lock_guard held(lock_);
    return volumes_;
  }
  [[nodiscard]] VolumeAnswers volume(const Path& root) override {
    return asked(root, [&] { return volumeAnswers_[root]; });
  }
  [[nodiscard]] bool exists(const Path& path) override {
    return asked(path, [&] { return !gone_.contains(path); });
  }
  [[nodiscard]] bool isFolder(const Path& path) override { return exists(path); }
  [[nodiscard]] SourceFacts source(const Path& path) override {
    return asked(path, [&] { return sources_[path]; });
  }
  [[nodiscard]] SourceCount count(const Path& path) override {
    return asked(path, [&] { return counts_[path]; });
  }
  [[nodiscard]] DestinationFacts destination(const Path& path) override {
    return asked(path, [&] { return destinations_[path]; });
  }
  [[nodiscard]] std::optional<DeviceKit::Reason> eject(const Path& volume,
                                                       const std::string&) override {
    const std::lock_guard held(lock_);
    ejected_.push_back(volume);
    return ejectFailure_;
  }

  // Only in `change`, or when nothing is being asked.
  std::vector<PlatformKit::MountedVolume> volumes_;
  std::map<Path, VolumeAnswers> volumeAnswers_;
  std::map<Path, SourceFacts> sources_;
  std::map<Path, SourceCount> counts_;
  std::map<Path, DestinationFacts> destinations_;
  std::set<Path> gone_;
  std::set<Path> dead_;
  std::vector<Path> ejected_;
  std::optional<DeviceKit::Reason> ejectFailure_;

 private:
  std::mutex lock_;
  std::condition_variable revived_;
};

/// Notes what the application asks of the desktop, in order.
class FakeDesktop final : public Desktop {
 public:
  void requestNotificationPermission() override { calls_.push_back("permission"); }
  void notify(const QString& title, const QString& body) override {
    calls_.push_back("notify " + title.toStdString() + " | " + body.toStdString());
  }
  void setBadge(std::optional<double> fraction) override { badge_ = fraction; }
  void inhibitSleep(const QString& reason) override {
    isSleepInhibited_ = true;
    calls_.push_back("inhibit " + reason.toStdString());
  }
  void allowSleep() override { isSleepInhibited_ = false; }

  std::vector<std::string> calls_;
  std::optional<double> badge_;
  bool isSleepInhibited_ = false;
};

/// A card "/media/A001" and two drives, all made up, and a model on them. The settings are in a
/// temporary folder.
class ModelFixture : public ::testing::Test {
 protected:
  const Path card_ = "/media/A001";
  const Path t7_ = "/media/T7";
  const Path raid_ = "/media/RAID";

  ModelFixture();
  ~ModelFixture() override { disks_->revive(); }

  static PlatformKit::MountedVolume cardVolume(const Path& root);
  static PlatformKit::MountedVolume driveVolume(const Path& root);
  /// Makes up a drive with so much room, in bytes.
  void addDrive(const Path& root, std::uint64_t room, std::uint64_t identifier);
  void addCard(const Path& root, std::size_t files, std::uint64_t bytes);

  /// A new model; the one before goes.
  OffloadModel& makeModel();
  /// The same, when card and destinations have answered.
  OffloadModel& makeReadyModel();
  [[nodiscard]] QString settingsPath() const {
    return QString::fromStdString((folder_.path() / "settings.ini").native());
  }

  PlatformKit::Testing::TempFolder folder_;
  std::shared_ptr<FakeDiskQueries> disks_ = std::make_shared<FakeDiskQueries>();
  std::unique_ptr<PlatformKit::Testing::FakeVolumeWatcher> watcher_;
  FakeDesktop desktop_;
  PlatformKit::Testing::ManualClock clock_{std::chrono::sys_days{std::chrono::year{2026} / 10 / 7} +
                                           std::chrono::hours{12}};
  std::function<std::unique_ptr<OffloadRunner>()> makeRunner_;
  std::unique_ptr<Settings> settings_;
  std::unique_ptr<OffloadModel> model_;
};

}  // namespace ZephrimarkOffload
