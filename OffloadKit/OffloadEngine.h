#pragma once

#include "DeviceKit/RawDeviceAccess.h"
#include "OffloadKit/Records/OffloadError.h"
#include "OffloadKit/Records/OffloadPlan.h"
#include "OffloadKit/Records/OffloadProgress.h"
#include "OffloadKit/Records/OffloadResult.h"
#include "PlatformKit/System.h"

#include <functional>
#include <mutex>

namespace OffloadKit {

/// Carries out one offload. One engine, one run.
class OffloadEngine {
 public:
  /// `rawDevices` opens the card for an image. It and the services in `system` outlive the engine.
  OffloadEngine(PlatformKit::System system, const DeviceKit::RawDeviceAccess& rawDevices)
      : system_(system), rawDevices_(rawDevices) {}

  /// Called on the run's thread with the path of a temporary copy right after it was completely
  /// written, flushed and closed, and before it is read back. For tests that harm copies;
  /// applications never set it. Not while a run is in progress.
  std::function<void(const PlatformKit::Path&)> afterWrite;

  /// Stops the run at its next step: before a file, or after a chunk. Any thread, any number of
  /// times, before a run too.
  void cancel();

  /// Scans the plan's source, checks every destination, copies every file to all destinations and
  /// reads every copy back, saves the card image if the plan has one, and leaves a report and a
  /// hash list on every destination with a verified file. Returns when all is done; `progress` is
  /// never called after that.
  ///
  /// Throws OffloadError when the run cannot start or is stopped. Then every file verified so far
  /// is in place, no temporary copy is left, and running the same plan again picks up where it
  /// ended. Throws std::invalid_argument for a chunk size of 0, std::bad_alloc and
  /// std::system_error when the system gives no memory or threads.
  OffloadResult run(const OffloadPlan& plan, const ProgressCallback& progress);

  /// As above; with `checkSpace` false the files are not counted when free space is checked.
  OffloadResult run(const OffloadPlan& plan, bool checkSpace, const ProgressCallback& progress);

 private:
  [[nodiscard]] bool isCancelled() const;

  PlatformKit::System system_;
  const DeviceKit::RawDeviceAccess& rawDevices_;
  mutable std::mutex lock_;
  bool cancelled_ = false;
};

}  // namespace OffloadKit
