#pragma once

#include "OffloadKit/Copying/Batch.h"
#include "OffloadKit/Records/OffloadError.h"
#include "OffloadKit/Records/OffloadProgress.h"
#include "OffloadKit/Run/RunClosing.h"

#include <functional>
#include <memory>
#include <span>
#include <vector>

namespace OffloadKit {

/// The course of one run and its accounts; see OffloadEngine::run. Internal to the engine, used
/// once, on one thread.
class OffloadRun {
 public:
  /// The arguments outlive the run.
  OffloadRun(const OffloadPlan& plan, PlatformKit::System system,
             const DeviceKit::RawDeviceAccess& rawDevices, const ProgressCallback& progress,
             const std::function<bool()>& isCancelled,
             const std::function<void(const PlatformKit::Path&)>& afterWrite);

  OffloadResult execute(bool checkSpace);

 private:
  void scanSource();
  void requirePlaces() const;
  void openDestinations();
  void lockDestinations();
  void countWork();
  void copyFiles(Pipeline& pipeline);
  void copyBatches(const CopyContext& context);
  void settleNames();
  using CopyStep = std::function<OffloadedFile(const CopyProgress&)>;
  void copyFile(const SourceFile& file, const CopyStep& copy);
  void countOutcomes(const OffloadedFile& file);
  void writeCardImage(Pipeline& pipeline);
  void report(OffloadProgress::Phase phase, const std::string& currentFile = {}) const;
  [[nodiscard]] double bytesPerSecond() const;
  [[nodiscard]] PlatformKit::Date now() const { return system_.clock.now(); }

  const OffloadPlan& plan_;
  PlatformKit::System system_;
  const ProgressCallback& progress_;
  const std::function<bool()>& isCancelled_;
  const std::function<void(const PlatformKit::Path&)>& afterWrite_;

  std::unique_ptr<PlatformKit::Folder> card_;
  Lanes lanes_;
  RunClosing closing_;
  std::vector<std::unique_ptr<PlatformKit::FolderLock>> locks_;
  std::vector<SourceFile> files_;
  PlatformKit::Path hidden_;  // the relative path of a file that no copy has
  OffloadResult result_;
  std::vector<OffloadProgress::Drive> drives_;
  std::uint64_t totalBytes_ = 0;
  // Work is counted in bytes handled: each source byte once while copying, once per copy read back
  // and once more when the card is read twice; each byte of a card image twice.
  double workWeight_ = 1;
  double totalWork_ = 1;
  double done_ = 0;
};

}  // namespace OffloadKit
