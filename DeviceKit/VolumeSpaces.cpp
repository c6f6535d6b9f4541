#include "DeviceKit/VolumeSpaces.h"

#include "PlatformKit/Posix/SignalMask.h"

#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>

namespace DeviceKit {
namespace {

using PlatformKit::VolumeSpace;

// Shared with threads that may outlive the question.
struct Answers {
  std::mutex mutex;
  std::condition_variable arrived;
  std::size_t awaited = 0;
  std::vector<std::optional<VolumeSpace>> spaces;

  void set(std::size_t index, std::optional<VolumeSpace> space) {
    {
      const std::lock_guard lock(mutex);
      spaces[index] = space;
      --awaited;
    }
    arrived.notify_one();
  }
};

}  // namespace

std::vector<std::optional<VolumeSpace>> volumeSpaces(
    const std::shared_ptr<PlatformKit::MountedVolumes>& volumes,
    const std::vector<PlatformKit::Path>& roots, std::chrono::milliseconds limit) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  const auto answers = std::make_shared<Answers>();
  answers->awaited = roots.size();
  answers->spaces.resize(roots.size());
  for (std::size_t i = 0; i < roots.size(); ++i) {
    const PlatformKit::AllSignalsBlocked inheritedByTheThread;
    try {
      std::thread([volumes, answers, i, root = roots[i]] {
        answers->set(i, volumes->space(root));
      }).detach();
    } catch (const std::system_error&) {
      answers->set(i, std::nullopt);  // no thread to be had: the size stays unknown
    }
  }
  std::unique_lock lock(answers->mutex);
  answers->arrived.wait_until(lock, deadline, [&] { return answers->awaited == 0; });
  return answers->spaces;
}

}  // namespace DeviceKit
