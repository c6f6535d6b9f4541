#include "OffloadKit/Copying/FolderFlush.h"

#include "OffloadKit/Transfer/DurableNames.h"
#include "OffloadKit/Transfer/PendingCopy.h"
#include "PlatformKit/Paths.h"

#include <cerrno>

namespace OffloadKit {
namespace {

using PlatformKit::Path;
using Outcome = OffloadedFile::Outcome;

// The folders above a destination, up to its volume's root.
std::vector<Path> foldersAbove(PlatformKit::System system, const Path& destination) {
  const auto resolved = system.fileSystem.resolve(destination);
  // Ignored on purpose: a destination that is not there fails when it is flushed itself.
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

}  // namespace

FolderFlush::FolderFlush(PlatformKit::System system, const std::vector<Path>& destinations,
                         std::string probe, DestinationHealth& health)
    : system_(system), probe_(std::move(probe)), health_(health), drives_(destinations.size()) {
  for (std::size_t i = 0; i < destinations.size(); ++i) drives_[i].destination = destinations[i];
}

FolderFlush::~FolderFlush() {
  for (std::size_t i = 0; i < drives_.size(); ++i) flush(i);
}

void FolderFlush::verified(std::size_t destination, const Path& final, bool resumed) {
  Drive& drive = drives_[destination];
  ++drive.verified;
  if (resumed) drive.holdsResumed = true;
  const std::string& name = final.native();
  const std::string_view parent = std::string_view(name).substr(0, name.rfind('/'));
  // Files of one folder come one after the other.
  if (parent == drive.lastFolder) return;
  drive.lastFolder = parent;
  // The name of a folder is in the one above it.
  for (Path folder = final.parent_path(); drive.unflushed.insert(folder).second;
       folder = folder.parent_path()) {
    if (drive.reachable.contains(folder) || folder == drive.destination) return;
  }
}

void FolderFlush::flushNow(std::size_t destination) {
  Drive& drive = drives_[destination];
  if (drive.durable == drive.verified) return;
  // A file was flushed since: the flush before was no empty yes. Where another folder is in its
  // place, that one was flushed; and some file systems have no flush for folders that could fail.
  if (drive.failures.empty() && health_.isPresent(destination)) drive.durable = drive.flushed;
  flush(destination);
}

void FolderFlush::volumeFlushed(std::size_t destination, int error, bool provenSince) {
  Drive& drive = drives_[destination];
  if (drive.durable == drive.verified) return;
  if (error != 0) failed(destination, drive.destination, error);
  if (!provenSince || !drive.failures.empty() || !health_.isPresent(destination)) return;
  flushed(drive);
  drive.durable = drive.flushed;
}

void FolderFlush::flushAll(std::vector<OffloadedFile>& files) {
  for (std::size_t i = 0; i < drives_.size(); ++i) {
    flush(i);
    if (drives_[i].durable < drives_[i].verified) probe(i);
    health_.checkPlace(i);
    if (!health_.isPresent(i)) failed(i, drives_[i].destination, ENODEV);
    takeBack(i, files);
  }
}

void FolderFlush::takeBack(std::size_t destination, std::vector<OffloadedFile>& files) const {
  const Drive& drive = drives_[destination];
  for (const Failure& failure : drive.failures) {
    std::size_t verified = 0;
    for (OffloadedFile& file : files) {
      Outcome& outcome = file.outcomes[destination];
      if (!outcome.isVerified() || verified++ < drive.durable) continue;
      if (PlatformKit::isInside(drive.destination / file.file.relativePath, failure.folder)) {
        outcome = Outcome::failed(failure.reason);
      }
    }
  }
}

void FolderFlush::flush(std::size_t destination) {
  Drive& drive = drives_[destination];
  PlatformKit::FileSystem& fileSystem = system_.fileSystem;
  if (drive.holdsResumed) {
    failed(destination, drive.destination, fileSystem.flushVolume(drive.destination));
  }
  for (const Path& folder : drive.unflushed) {
    failed(destination, folder, fileSystem.flushFolder(folder));
  }
  if (!drive.unflushed.empty() && !drive.reachable.contains(drive.destination)) {
    for (const Path& folder : foldersAbove(system_, drive.destination)) {
      failed(destination, drive.destination, fileSystem.flushFolder(folder));
    }
  }
  flushed(drive);
}

// ext4 whose journal failed in the background says yes to the flush of a folder, because there is
// nothing to flush any more. It makes no file, for good; so where one can be made behind the flush,
// that was true.
void FolderFlush::probe(std::size_t destination) {
  const Path& folder = drives_[destination].destination;
  const int error =
      PendingCopy::create(system_.fileSystem, folder / probe_, folder / probe_).error();
  // Others mean that there is no room or no right to make one.
  const bool isDead = endsTheDrive(error) && error != ENOSPC;
  if (isDead || error == EROFS) failed(destination, folder, error);
}

void FolderFlush::failed(std::size_t destination, const Path& folder, int error) {
  if (!isLoss(error)) return;
  Reason reason = health_.contentError(destination, error);
  if (const Reason* givenUp = health_.givenUp(destination)) reason = *givenUp;
  drives_[destination].failures.push_back({folder, std::move(reason)});
}

void FolderFlush::flushed(Drive& drive) {
  drive.flushed = drive.verified;
  drive.reachable.merge(drive.unflushed);
  drive.unflushed.clear();
  drive.lastFolder.clear();
  drive.holdsResumed = false;
}

}  // namespace OffloadKit
