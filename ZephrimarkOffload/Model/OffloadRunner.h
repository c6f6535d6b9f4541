#pragma once

#include "OffloadKit/OffloadEngine.h"

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
  /// Both outlive the runner.
  EngineRunner(PlatformKit::System system, const DeviceKit::RawDeviceAccess& rawDevices)
      : engine_(system, rawDevices) {}

  OffloadKit::OffloadResult run(const OffloadKit::OffloadPlan& plan,
                                const OffloadKit::ProgressCallback& progress) override {
    return engine_.run(plan, progress);
  }
  void cancel() override { engine_.cancel(); }

 private:
  OffloadKit::OffloadEngine engine_;
};

}  // namespace ZephrimarkOffload
