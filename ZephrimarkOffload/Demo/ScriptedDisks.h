#pragma once

#include "PlatformKit/VolumeWatcher.h"
#include "ZephrimarkOffload/Model/DiskQueries.h"

#include <functional>
#include <mutex>
#include <vector>

namespace ZephrimarkOffload::Demo {

/// A card that is not there. Sizes in bytes.
struct ScriptedCard {
  PlatformKit::Path root;
  std::string name;
  std::string camera;
  SourceCount content;
  std::uint64_t capacity = 0;
};

/// A drive that is not there. Sizes in bytes.
struct ScriptedDrive {
  PlatformKit::Path root;
  std::string name;
  std::uint64_t capacity = 0;
  std::uint64_t available = 0;
};

/// The made-up cards and drives of a demonstration, which touches no disk of the computer. Every
/// other path is a folder on a made-up internal disk. Any thread.
class ScriptedDisks final : public DiskQueries, public PlatformKit::VolumeWatcher {
 public:
  ScriptedDisks(std::vector<ScriptedCard> cards, std::vector<ScriptedDrive> drives)
      : cards_(std::move(cards)), drives_(std::move(drives)) {}

  [[nodiscard]] std::vector<PlatformKit::MountedVolume> volumes() override;
  [[nodiscard]] VolumeAnswers volume(const PlatformKit::Path& root) override;
  [[nodiscard]] bool exists(const PlatformKit::Path& path) override;
  [[nodiscard]] bool isFolder(const PlatformKit::Path& path) override { return exists(path); }
  [[nodiscard]] SourceFacts source(const PlatformKit::Path& path) override;
  [[nodiscard]] SourceCount count(const PlatformKit::Path& path) override;
  [[nodiscard]] DestinationFacts destination(const PlatformKit::Path& path) override;
  /// Takes the card away.
  [[nodiscard]] std::optional<DeviceKit::Reason> eject(const PlatformKit::Path& volume,
                                                       const std::string& name) override;

  void start(std::function<void()> changed) override;

 private:
  [[nodiscard]] const ScriptedCard* card(const PlatformKit::Path& root) const;

  std::mutex lock_;
  std::vector<ScriptedCard> cards_;
  const std::vector<ScriptedDrive> drives_;
  std::function<void()> changed_;
};

}  // namespace ZephrimarkOffload::Demo
