#include "PlatformKit/Posix/Interrupts.h"

#include <csignal>
#include <cstdlib>

#include <pthread.h>

namespace PlatformKit {
namespace {

// Wakes the watcher to see that it is to end.
constexpr int kStopWatching = SIGUSR2;

// A signal that was ignored when the program started stays ignored: nohup relies on that.
bool isIgnored(int signal) {
  struct sigaction action {};
  return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

sigset_t watchedSignals() {
  sigset_t watched;
  sigemptyset(&watched);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    if (!isIgnored(signal)) sigaddset(&watched, signal);
  }
  sigaddset(&watched, kStopWatching);
  return watched;
}

void watch(const std::function<void(int)>& onFirst, const std::atomic<bool>& stopping) {
  const sigset_t watched = watchedSignals();
  bool interrupted = false;
  for (;;) {
    int signal = 0;
    if (sigwait(&watched, &signal) != 0) continue;
    if (stopping) return;
    if (signal == kStopWatching) continue;  // somebody else's
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
  std::signal(SIGXFSZ, SIG_IGN);
  watcher_ = std::thread([this, onFirst = std::move(onFirst)] { watch(onFirst, stopping_); });
}

Interrupts::~Interrupts() {
  stopping_ = true;
  pthread_kill(watcher_.native_handle(), kStopWatching);
  watcher_.join();
}

}  // namespace PlatformKit
