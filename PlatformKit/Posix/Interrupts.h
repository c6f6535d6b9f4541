#pragma once

#include <atomic>
#include <functional>
#include <thread>

namespace PlatformKit {

/// Turns Ctrl-C (SIGINT), SIGTERM and SIGHUP into a call; those that were ignored at the start (as
/// by nohup) stay ignored. Make it before any other thread: the
/// signals are blocked in the calling thread and in every thread started later, and a thread of its
/// own waits for them. A broken output pipe (SIGPIPE) or a file that may not grow any more
/// (SIGXFSZ) does not end the process from then on.
class Interrupts {
 public:
  /// `onFirst` is called once, on the watching thread, with the number of the first signal; it must
  /// not throw. The second signal ends the process at once with status 128 + its number.
  explicit Interrupts(std::function<void(int signal)> onFirst);
  /// Stops watching; the signals stay blocked.
  ~Interrupts();
  Interrupts(const Interrupts&) = delete;
  Interrupts& operator=(const Interrupts&) = delete;

 private:
  std::atomic<bool> stopping_ = false;
  std::thread watcher_;
};

}  // namespace PlatformKit
