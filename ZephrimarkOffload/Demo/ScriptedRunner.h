#pragma once

#include "ZephrimarkOffload/Model/OffloadRunner.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <vector>

namespace ZephrimarkOffload::Demo {

/// What the script of an offload works with.
struct ScriptedRun {
  const OffloadKit::OffloadPlan& plan;
  const std::vector<OffloadKit::SourceFile>& files;
  const OffloadKit::ProgressCallback& report;
  /// Waits so long; throws OffloadError::cancelled when the offload is stopped meanwhile.
  std::function<void(std::chrono::milliseconds)> wait;
};

/// The course of an offload, as OffloadEngine::run.
using Script = std::function<OffloadKit::OffloadResult(const ScriptedRun&)>;

/// Plays a script in place of an offload. Copies nothing.
class ScriptedRunner final : public OffloadRunner {
 public:
  using FilesOf = std::function<std::vector<OffloadKit::SourceFile>(const PlatformKit::Path&)>;

  ScriptedRunner(Script script, FilesOf filesOf)
      : script_(std::move(script)), filesOf_(std::move(filesOf)) {}

  OffloadKit::OffloadResult run(const OffloadKit::OffloadPlan& plan,
                                const OffloadKit::ProgressCallback& progress) override;
  void cancel() override;

 private:
  void wait(std::chrono::milliseconds time);

  Script script_;
  FilesOf filesOf_;
  std::mutex lock_;
  std::condition_variable changed_;
  bool isCancelled_ = false;
};

}  // namespace ZephrimarkOffload::Demo
