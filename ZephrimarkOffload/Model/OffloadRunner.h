#pragma once

#include "OffloadKit/OffloadEngine.h"
#include "PlatformKit/Disks.h"

namespace ZephrimarkOffload {

/// Carries out one offload for a Run. One runner, one run. The seam between the application and the
/// engine: demonstrations and tests play theirs.
class OffloadRunner {
 public:
  virtual ~OffloadRunner() = default;

  /// As OffloadEngine::run, with all its errors. On a thread of its own, where it may block; so is
  /// `progress` called.
  virtual OffloadKit::OffloadResult run(const OffloadKit::OffloadPlan& plan,
                                        const OffloadKit::ProgressCallback& progress) = 0;

  /// As OffloadEngine::cancel. Any thread, also before and behind `run`.
  virtual void cancel() = 0;
};

/// The runner that copies files.
class EngineRunner final : public OffloadRunner {
 public:
  /// All outlive the runner. `disks` tells which disk is under a card.
  EngineRunner(PlatformKit::System system, const DeviceKit::RawDeviceAccess& rawDevices,
               PlatformKit::Disks& disks)
      : engine_(system, rawDevices), disks_(disks) {}

  /// Also throws OffloadError::cardImageUnavailable when the plan wants an image of another disk
  /// than the one that is under its source now.
  OffloadKit::OffloadResult run(const OffloadKit::OffloadPlan& plan,
                                const OffloadKit::ProgressCallback& progress) override;
  void cancel() override { engine_.cancel(); }

 private:
  OffloadKit::OffloadEngine engine_;
  PlatformKit::Disks& disks_;
};

}  // namespace ZephrimarkOffload
