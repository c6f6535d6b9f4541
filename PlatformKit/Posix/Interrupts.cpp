#include "PlatformKit/Posix/Interrupts.h"

#include <csignal>
#include <cstdlib>

#include <pthread.h>

namespace PlatformKit {
namespace {

// Asks the watcher to end; nobody else sends it, as it is blocked everywhere.
constexpr int kStopWatching = SIGUSR2;

sigset_t watchedSignals() {
  sigset_t watched;
  sigemptyset(&watched);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, kStopWatching}) sigaddset(&watched, signal);
  return watched;
}

void watch(const std::function<void(int)>& onFirst) {
  const sigset_t watched = watchedSignals();
  bool interrupted = false;
  for (;;) {
    int signal = 0;
    if (sigwait(&watched, &signal) != 0) continue;
    if (signal == kStopWatching) return;
    if (interrupted) std::_Exit(128 + signal);
    interrupted = true;
    onFirst(signal);
  }
}

}  // namespace

Interrupts::Interrupts(std::function<void(int)> onFirst) {
  const sigset_t watched = watchedSignals();
  pthread_sigmask(SIG_BLOCK, &watched, nullptr);
  std::signal(SIGPIPE, SIG_IGN);
  watcher_ = std::thread([onFirst = std::move(onFirst)] { watch(onFirst); });
}

Interrupts::~Interrupts() {
  pthread_kill(watcher_.native_handle(), kStopWatching);
  watcher_.join();
}

}  // namespace PlatformKit
