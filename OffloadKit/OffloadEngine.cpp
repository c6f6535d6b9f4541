#include "OffloadKit/OffloadEngine.h"

#include "OffloadKit/Run/OffloadRun.h"

#include <stdexcept>

namespace OffloadKit {

void OffloadEngine::cancel() {
  const std::lock_guard guard(lock_);
  cancelled_ = true;
}

bool OffloadEngine::isCancelled() const {
  const std::lock_guard guard(lock_);
  return cancelled_;
}

OffloadResult OffloadEngine::run(const OffloadPlan& plan, const ProgressCallback& progress) {
  return run(plan, true, progress);
}

OffloadResult OffloadEngine::run(const OffloadPlan& plan, bool checkSpace,
                                 const ProgressCallback& progress) {
  if (plan.chunkSize == 0) throw std::invalid_argument("the chunk size is 0");
  const std::function<bool()> cancelled = [this] { return isCancelled(); };
  return OffloadRun(plan, system_, rawDevices_, progress, cancelled, afterWrite)
      .execute(checkSpace);
}

}  // namespace OffloadKit
