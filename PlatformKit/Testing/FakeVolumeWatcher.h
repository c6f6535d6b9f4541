#pragma once

#include "PlatformKit/VolumeWatcher.h"

#include <thread>
#include <utility>

namespace PlatformKit::Testing {

/// A watcher whose events a test makes up.
class FakeVolumeWatcher final : public VolumeWatcher {
 public:
  void start(std::function<void()> changed) override { changed_ = std::move(changed); }

  [[nodiscard]] bool isStarted() const { return changed_ != nullptr; }

  /// As if a volume had come or gone: the call is made on a thread of its own and has returned when
  /// this does. Only once started.
  void fire() { std::thread(changed_).join(); }

 private:
  std::function<void()> changed_;
};

}  // namespace PlatformKit::Testing
