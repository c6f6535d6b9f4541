#include "ZephrimarkOffload/Demo/ScriptedRunner.h"

namespace ZephrimarkOffload::Demo {

OffloadKit::OffloadResult ScriptedRunner::run(const OffloadKit::OffloadPlan& plan,
                                              const OffloadKit::ProgressCallback& progress) {
  const std::vector<OffloadKit::SourceFile> files = filesOf_(plan.source);
  return script_({plan, files, progress, [this](std::chrono::milliseconds time) { wait(time); }});
}

void ScriptedRunner::cancel() {
  {
    const std::lock_guard held(lock_);
    isCancelled_ = true;
  }
  changed_.notify_all();
}

void ScriptedRunner::wait(std::chrono::milliseconds time) {
  std::unique_lock held(lock_);
  if (changed_.wait_for(held, time, [this] { return isCancelled_; })) {
    throw OffloadKit::OffloadError::cancelled();
  }
}

}  // namespace ZephrimarkOffload::Demo
