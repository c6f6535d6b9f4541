#pragma once

#include "OffloadKit/OffloadEngine.h"
#include "PlatformKit/Disks.h"

namespace ZephrimarkOffload {

/// Carries out one offload for the model. One runner, one run.
class OffloadRunner {
 public:
  virtual ~OffloadRunner() = default;

  /// As OffloadEngine::run.
  virtual OffloadKit::OffloadResult run(const OffloadKit::OffloadPlan& plan,
                                        const OffloadKit::ProgressCallback& progress) = 0;

  /// As OffloadEngine::cancel. Any thread.
  virtual void cancel() = 0;
};

/// The runner that copies files.
class EngineRunner final : public OffloadRunner {
 public:
  /// All outlive the runner. `disks` tells which disk is under a card.
  EngineRunner(PlatformKit::System system, const DeviceKit::RawDeviceAccess& rawDevices,
               PlatformKit::Disks& disks)
      : engine_(system, rawDevices), disks_(disks) {}

  /// Also throws OffloadError::cardImageUnavailable when the plan wants an image of another disk than
  /// the one that is under its source now.
  OffloadKit::OffloadResult run(const OffloadKit::OffloadPlan& plan,
                                const OffloadKit::ProgressCallback& progress) override;
  void cancel() override { engine_.cancel(); }

 private:
  OffloadKit::OffloadEngine engine_;
  PlatformKit::Disks& disks_;
};

}  // namespace ZephrimarkOffload
