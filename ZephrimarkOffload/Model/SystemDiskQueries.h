#pragma once

#include "DeviceKit/CardEjector.h"
#include "PlatformKit/Disks.h"
#include "PlatformKit/Ejector.h"
#include "PlatformKit/System.h"
#include "ZephrimarkOffload/Model/DiskQueries.h"

namespace ZephrimarkOffload {

/// The queries, answered by this computer's disks: each call asks the system anew and has no state.
/// What each answers and how long it may take, see DiskQueries.
class SystemDiskQueries final : public DiskQueries {
 public:
  /// `ejector`: null when nothing can be ejected. Everything outlives this object and is safe to
  /// use from several threads.
  SystemDiskQueries(PlatformKit::System system, PlatformKit::MountedVolumes& mounted,
                    PlatformKit::Disks& disks, PlatformKit::Ejector* ejector)
      : system_(system), mounted_(mounted), disks_(disks), ejector_(disks, ejector) {}

  [[nodiscard]] std::vector<PlatformKit::MountedVolume> volumes() override;
  [[nodiscard]] VolumeAnswers volume(const PlatformKit::Path& root) override;
  [[nodiscard]] bool exists(const PlatformKit::Path& path) override;
  [[nodiscard]] bool isFolder(const PlatformKit::Path& path) override;
  [[nodiscard]] SourceFacts source(const PlatformKit::Path& path) override;
  [[nodiscard]] SourceCount count(const PlatformKit::Path& path) override;
  [[nodiscard]] DestinationFacts destination(const PlatformKit::Path& path) override;
  [[nodiscard]] std::optional<DeviceKit::Reason> eject(const PlatformKit::Path& volume,
                                                       const std::string& name) override;

 private:
  PlatformKit::System system_;
  PlatformKit::MountedVolumes& mounted_;
  PlatformKit::Disks& disks_;
  DeviceKit::CardEjector ejector_;
};

}  // namespace ZephrimarkOffload
