#include "OffloadKit/FolderFlush.h"

#include <algorithm>
#include <cerrno>

namespace OffloadKit {
namespace {

using PlatformKit::Path;
using Outcome = OffloadedFile::Outcome;

bool isBelow(const Path& path, const Path& folder) {
  return std::mismatch(folder.begin(), folder.end(), path.begin(), path.end()).first ==
         folder.end();
}

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

FolderFlush::FolderFlush(PlatformKit::System system, std::vector<Path> destinations)
    : system_(system),
      destinations_(std::move(destinations)),
      folders_(destinations_.size()),
      lastFolders_(destinations_.size()),
      resumed_(destinations_.size(), false) {}

FolderFlush::~FolderFlush() {
  for (std::size_t i = 0; i < destinations_.size(); ++i) static_cast<void>(flushDestination(i));
}

void FolderFlush::verified(std::size_t destination, const Path& final, bool resumed) {
  if (resumed) resumed_[destination] = true;
  const std::string& name = final.native();
  const std::string_view parent = std::string_view(name).substr(0, name.rfind('/'));
  // Files of one folder come one after the other.
  if (parent == lastFolders_[destination]) return;
  lastFolders_[destination] = parent;
  std::set<Path>& folders = folders_[destination];
  Path folder = final.parent_path();
  while (folders.insert(folder).second && folder != destinations_[destination] &&
         folder.has_relative_path()) {
    folder = folder.parent_path();
  }
}

void FolderFlush::flush(std::vector<OffloadedFile>& files, DestinationHealth& health) {
  for (std::size_t i = 0; i < destinations_.size(); ++i) {
    const bool toldAlready = health.givenUp(i) != nullptr;
    std::vector<Unflushed> failed = flushDestination(i);
    health.checkVolume(i);
    if (toldAlready) continue;
    if (health.givenUp(i) != nullptr) failed.push_back({destinations_[i], ENODEV});
    for (const Unflushed& unflushed : failed) {
      const std::string sentence = health.contentError(i, unflushed.error);
      for (OffloadedFile& file : files) {
        Outcome& outcome = file.outcomes[i];
        if (outcome.isVerified() &&
            isBelow(destinations_[i] / file.file.relativePath, unflushed.folder)) {
          outcome = Outcome::failed(sentence);
        }
      }
    }
  }
}

std::vector<FolderFlush::Unflushed> FolderFlush::flushDestination(std::size_t destination) {
  std::vector<Unflushed> unflushed;
  const auto note = [&unflushed](const Path& folder, int error) {
    // A folder that this user may write to but not open cannot be flushed; that is no fault.
    if (error != 0 && error != EACCES && error != EPERM) unflushed.push_back({folder, error});
  };
  if (resumed_[destination]) {
    note(destinations_[destination], system_.fileSystem.flushVolume(destinations_[destination]));
  }
  for (const Path& folder : folders_[destination]) {
    note(folder, system_.fileSystem.flushFolder(folder));
  }
  if (!folders_[destination].empty()) {
    for (const Path& folder : foldersAbove(system_, destinations_[destination])) {
      note(destinations_[destination], system_.fileSystem.flushFolder(folder));
    }
  }
  folders_[destination].clear();
  lastFolders_[destination].clear();
  resumed_[destination] = false;
  return unflushed;
}

}  // namespace OffloadKit
