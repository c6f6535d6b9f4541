#include "OffloadKit/Run/OffloadRun.h"

#include "DeviceKit/Places.h"
#include "OffloadKit/Card/SourceScan.h"
#include "OffloadKit/Records/OffloadError.h"
#include "OffloadKit/Run/Preflight.h"

#include <algorithm>
#include <cerrno>

namespace OffloadKit {

using PlatformKit::Path;
using Outcome = OffloadedFile::Outcome;
using Phase = OffloadProgress::Phase;

OffloadRun::OffloadRun(const OffloadPlan& plan, PlatformKit::System system,
                       const DeviceKit::RawDeviceAccess& rawDevices,
                       const ProgressCallback& progress, const std::function<bool()>& isCancelled,
                       const std::function<void(const Path&)>& afterWrite)
    : plan_(plan),
      system_(system),
      progress_(progress),
      isCancelled_(isCancelled),
      afterWrite_(afterWrite),
      closing_(plan, system, rawDevices, lanes_) {
  result_.plan = plan;
  for (std::size_t i = 0; i < plan.destinations.size(); ++i) lanes_.emplace_back(system, plan, i);
}

OffloadResult OffloadRun::execute(bool checkSpace) {
  result_.started = now();
  progress_({});
  scanSource();
  requirePlaces();
  preflight(system_, plan_, checkSpace ? files_ : std::vector<SourceFile>{});
  openDestinations();
  lockDestinations();
  // Nobody is to be asked for a password after Stop.
  if (plan_.cardImage && isCancelled_()) throw OffloadError::cancelled();
  closing_.openCardDevice();
  countWork();
  Pipeline pipeline(lanes_.size(), plan_.chunkSize);
  copyFiles(pipeline);
  writeCardImage(pipeline);
  OffloadProgress finishing;
  finishing.phase = Phase::finishing;
  finishing.filesDone = finishing.filesTotal = files_.size();
  finishing.bytesTotal = totalBytes_;
  finishing.fraction = 1;
  finishing.drives = drives_;
  progress_(finishing);
  result_.finished = now();
  closing_.writeRecords(result_, hidden_);
  return std::move(result_);
}

// A drive that was unmounted leaves a folder behind, on the computer's own disk.
void OffloadRun::requirePlaces() const {
  for (const Lane& lane : lanes_) {
    if (lane.isInPlace()) continue;
    throw OffloadError::destinationUnavailable(DeviceKit::destinationName(system_, lane.path()));
  }
}

void OffloadRun::scanSource() {
  card_ = openSource(system_.fileSystem, plan_.source);
  SourceScan found = scan(*card_);
  if (found.files.empty() && !found.unreadable.empty()) {
    // A card that refuses everything must not look like one that may be erased.
    const UnreadableItem& first = found.unreadable.front();
    throw OffloadError::sourceUnreadable(Reason::about(first.relativePath, first.reason));
  }
  if (found.files.empty()) throw OffloadError::noFiles();
  files_ = std::move(found.files);
  result_.unreadable = std::move(found.unreadable);
}

void OffloadRun::openDestinations() {
  for (std::size_t i = 0; i < lanes_.size(); ++i) {
    lanes_[i].open();
    if (lanes_[i].readsThroughCache()) result_.readThroughCache.insert(i);
  }
}

// Two runs into one folder would take each other's temporary copies, and two destinations that are
// one folder would be one copy counted twice.
void OffloadRun::lockDestinations() {
  for (std::size_t i = 0; i < lanes_.size(); ++i) {
    const Lane& lane = lanes_[i];
    const auto before = lanes_.begin() + static_cast<std::ptrdiff_t>(i);
    const bool isTwice = std::any_of(lanes_.begin(), before, [&](const Lane& other) {
      return other.identity() == lane.identity();
    });
    auto lock = lane.folder().lockFolder({});
    if (isTwice || lock.error() == EWOULDBLOCK) {
      throw OffloadError::destinationInUse(DeviceKit::destinationName(system_, lane.path()));
    }
    // Ignored on purpose: some file systems know no locks.
    if (lock.ok()) locks_.push_back(std::move(lock.value()));
  }
}

void OffloadRun::countWork() {
  for (const SourceFile& file : files_) totalBytes_ += file.size;
  workWeight_ = static_cast<double>(plan_.destinations.size() + (plan_.verifySource ? 2 : 1));
  totalWork_ = std::max(1.0, workWeight_ * static_cast<double>(totalBytes_) +
                                 static_cast<double>(closing_.imageWork()));
}

void OffloadRun::copyFiles(Pipeline& pipeline) {
  const auto paths = relativePathsOf(files_);
  const TemporaryNames names(paths);
  const bool areDistinct = names.areDistinct(paths);
  BatchLength length(plan_.chunkSize, lanes_.size(), pipeline.takesGroups(), names, areDistinct);
  result_.files.reserve(files_.size());
  drives_.resize(lanes_.size());
  copyBatches({plan_, system_.clock, *card_, lanes_, names, areDistinct, length, pipeline,
               isCancelled_, afterWrite_});
  hidden_ = names.forFile("Offload");
  settleNames();
}

void OffloadRun::copyBatches(const CopyContext& context) {
  std::span<const SourceFile> left(files_);
  const auto takeNext = [&]() -> std::unique_ptr<Batch> {
    if (left.empty()) return nullptr;
    const auto files = left.first(context.length.of(left));
    left = left.subspan(files.size());
    return std::make_unique<Batch>(files, context);
  };
  for (auto current = takeNext(); current;) {
    auto next = takeNext();
    for (std::size_t i = 0; i < current->files().size(); ++i) {
      copyFile(current->files()[i], [&](const CopyProgress& progress) {
        return current->finish(i, progress, next.get());
      });
    }
    current = std::move(next);
  }
}

// Names that are not on a drive for certain are taken back.
void OffloadRun::settleNames() {
  for (std::size_t i = 0; i < lanes_.size(); ++i) {
    lanes_[i].names().flushAll(result_.files, i, hidden_);
  }
  drives_.assign(drives_.size(), {});
  for (const OffloadedFile& file : result_.files) countOutcomes(file);
}

void OffloadRun::copyFile(const SourceFile& file, const CopyStep& copy) {
  if (isCancelled_()) throw OffloadError::cancelled();
  report(Phase::copying, file.relativePath);
  const auto advance = [&](Phase phase) {
    return [this, phase, &file](std::uint64_t bytes) {
      done_ += static_cast<double>(bytes);
      report(phase, file.relativePath);
    };
  };
  const CopyProgress progress{advance(Phase::copying), advance(Phase::verifying)};
  std::optional<Reason> failure;
  try {
    result_.files.push_back(copy(progress));
  } catch (const OffloadError& error) {
    if (error.isCancelled()) throw;
    failure = error.reason();
  } catch (const std::exception& error) {
    failure = Reason::fromOutside(error.what());
  }
  if (failure) {
    done_ += workWeight_ * static_cast<double>(file.size);
    result_.files.push_back(
        {file, std::nullopt,
         std::vector<Outcome>(plan_.destinations.size(), Outcome::failed(*failure))});
  }
  countOutcomes(result_.files.back());
}

void OffloadRun::countOutcomes(const OffloadedFile& file) {
  for (std::size_t i = 0; i < drives_.size(); ++i) {
    OffloadProgress::Drive& drive = drives_[i];
    if (file.outcomes[i].isVerified()) {
      ++drive.verified;
    } else {
      ++drive.failed;
      drive.lastFailure = *file.outcomes[i].reason();
    }
  }
}

void OffloadRun::writeCardImage(Pipeline& pipeline) {
  result_.cardImage = closing_.writeCardImage(result_.started, pipeline, isCancelled_,
                                              [this](const std::string& name, double bytes) {
                                                done_ += bytes;
                                                report(Phase::imaging, name);
                                              });
}

void OffloadRun::report(Phase phase, const std::string& currentFile) const {
  OffloadProgress progress;
  progress.phase = phase;
  progress.filesDone = result_.files.size();
  progress.filesTotal = files_.size();
  progress.bytesTotal = totalBytes_;
  progress.fraction = done_ / totalWork_;
  if (phase == Phase::imaging) progress.fraction = std::min(progress.fraction, 1.0);
  progress.currentFile = currentFile;
  progress.bytesPerSecond = bytesPerSecond();
  progress.drives = drives_;
  progress_(progress);
}

double OffloadRun::bytesPerSecond() const {
  const double elapsed = std::chrono::duration<double>(now() - result_.started).count();
  return elapsed > 0 ? done_ / workWeight_ / elapsed : 0;
}

}  // namespace OffloadKit
