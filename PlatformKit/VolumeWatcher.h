#pragma once

#include <functional>

namespace PlatformKit {

/// Tells when volumes are mounted, unmounted or renamed and when drives are pulled.
class VolumeWatcher {
 public:
  /// Stops; `changed` is not called any more when the destructor returns.
  virtual ~VolumeWatcher() = default;

  /// From now on calls `changed` after each such event, on a thread of its own; events within a
  /// moment make one call. `changed` must not throw or destroy the watcher; what happens while it
  /// runs makes another call afterwards. Once per watcher. Where the system tells of nothing,
  /// nothing is called.
  /// Throws std::system_error when there is no thread to be had.
  virtual void start(std::function<void()> changed) = 0;
};

}  // namespace PlatformKit
