#include "OffloadKit/Copying/LaneNames.h"

#include "OffloadKit/Transfer/DurableNames.h"
#include "PlatformKit/Paths.h"

#include <algorithm>
#include <cerrno>

namespace OffloadKit {
namespace {

using PlatformKit::Path;
using Outcome = OffloadedFile::Outcome;

// The folders above a destination, up to its volume's root.
std::vector<Path> foldersAbove(PlatformKit::System system, const Path& destination) {
  const auto resolved = system.fileSystem.resolve(destination);
  // Ignored on purpose: a destination that is not there is told by `isPresent`.
  if (!resolved.ok()) return {};
  std::vector<Path> above;
  const auto volume = system.volumes.facts(resolved.value()).identifier;
  for (Path folder = resolved.value(); folder.has_relative_path();) {
    folder = folder.parent_path();
    if (system.volumes.facts(folder).identifier != volume) break;
    above.push_back(folder);
  }
  return above;
}

bool isNotThere(int error) {
  return error == ENOENT || error == ENOTDIR || error == ELOOP || error == EXDEV;
}

}  // namespace

LaneNames::~LaneNames() {
  if (verified_ > flushed_) flush();
}

void LaneNames::named(const Path& final, PlatformKit::ItemIdentity copy) {
  if (count(final)) witnesses_.push_back({final, copy});
}

void LaneNames::found(const Path& final) {
  holdsResumed_ = true;
  if (!count(final)) return;
  const auto status = lane_.folder().status(final);
  // Ignored on purpose: it was read back a moment ago, and is flushed as others are.
  if (status.ok()) witnesses_.push_back({final, status.value().identity});
}

bool LaneNames::count(const Path& final) {
  ++verified_;
  const std::string& name = final.native();
  const std::size_t slash = name.rfind('/');
  const std::string_view parent =
      std::string_view(name).substr(0, slash == std::string::npos ? 0 : slash);
  // Files of one folder come one after the other.
  if (!unflushed_.empty() && parent == lastFolder_) return false;
  lastFolder_ = parent;
  // The name of a folder is in the one above it.
  for (Path folder = parent; unflushed_.insert(folder).second; folder = folder.parent_path()) {
    if (folder.empty() || reachable_.contains(folder)) break;
  }
  return witnessed_.insert(Path(parent)).second;
}

// Somebody may have moved a folder, or put another in its place, while copies in it got their
// names. Only behind a flush: until then the folder that was moved may be meant.
void LaneNames::look(std::size_t firstWitness) {
  for (std::size_t i = firstWitness; i < witnesses_.size(); ++i) {
    const Witness& witness = witnesses_[i];
    const auto there = lane_.folder().status(witness.final);
    const bool isFound = there.ok() && there.value().identity == witness.copy;
    // Other errors tell nothing of where it is; what they mean for the drive, a flush tells.
    const bool isUnknown = !there.ok() && !isNotThere(there.error());
    if (isFound || isUnknown) continue;
    failures_.push_back({witness.final.parent_path(), lane_.otherError(ENOENT), true});
  }
  looked_ = witnesses_.size();
}

void LaneNames::flushNow() {
  if (durable_ == verified_) return;
  // A file was flushed since: the flush before was no empty yes. Some file systems have no flush
  // for folders that could fail.
  if (failures_.empty() && lane_.isPresent()) durable_ = flushed_;
  flush();
}

void LaneNames::volumeFlushed(int error, bool provenSince) {
  if (durable_ == verified_) return;
  if (error != 0) failed({}, error);
  look(looked_);
  if (!provenSince || !failures_.empty() || !lane_.isPresent()) return;
  flushed();
  durable_ = flushed_;
}

void LaneNames::flushAll(std::vector<OffloadedFile>& files, std::size_t index, const Path& probe) {
  flush();
  if (durable_ < verified_) failed({}, checkTakesChanges(lane_.folder(), probe));
  look(0);
  lane_.checkPlace();
  if (!lane_.isPresent()) failed({}, ENODEV);
  takeBack(files, index);
}

void LaneNames::takeBack(std::vector<OffloadedFile>& files, std::size_t index) const {
  std::size_t verified = 0;
  for (OffloadedFile& file : files) {
    Outcome& outcome = file.outcomes[index];
    if (!outcome.isVerified()) continue;
    const bool isDurable = verified++ < durable_;
    const auto failure = std::find_if(failures_.begin(), failures_.end(), [&](const Failure& one) {
      return (one.isElsewhere || !isDurable) &&
             PlatformKit::isInside(file.file.relativePath, one.folder);
    });
    if (failure != failures_.end()) outcome = Outcome::failed(failure->reason);
  }
}

void LaneNames::flush() {
  if (holdsResumed_) failed({}, lane_.folder().flushVolume({}));
  for (const Path& folder : unflushed_) failed(folder, lane_.folder().flushFolder(folder));
  if (!unflushed_.empty() && !reachable_.contains(Path())) flushAbove();
  look(looked_);
  flushed();
}

void LaneNames::flushAbove() {
  for (const Path& folder : foldersAbove(system_, lane_.path())) {
    failed({}, system_.fileSystem.flushFolder(folder));
  }
}

void LaneNames::failed(const Path& folder, int error) {
  if (!isLoss(error)) return;
  Reason reason = lane_.contentError(error);
  if (const Reason* givenUp = lane_.givenUp()) reason = *givenUp;
  failures_.push_back({folder, std::move(reason), false});
}

void LaneNames::flushed() {
  flushed_ = verified_;
  reachable_.merge(unflushed_);
  unflushed_.clear();
  witnessed_.clear();
  lastFolder_.clear();
  holdsResumed_ = false;
}

}  // namespace OffloadKit
