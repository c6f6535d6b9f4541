#pragma once

#include "OffloadKit/DestinationHealth.h"
#include "OffloadKit/OffloadResult.h"
#include "PlatformKit/System.h"

#include <map>
#include <set>
#include <string>
#include <vector>

namespace OffloadKit {

/// Makes the names of a run's verified copies survive a power cut: remembers the folders they lie
/// in and flushes each once, at the end, together with all folders above it on its volume. Those may
/// be new without being the run's: a run that was killed left them, or somebody made them just
/// before. One thread.
class FolderFlush {
 public:
  FolderFlush(PlatformKit::System system, std::vector<PlatformKit::Path> destinations);
  /// Flushes what has not been flushed; failures are ignored, since nobody is left to be told.
  ~FolderFlush();
  FolderFlush(const FolderFlush&) = delete;
  FolderFlush& operator=(const FolderFlush&) = delete;

  /// A verified copy now has its final name, which lies on the destination. `resumed`: it was put
  /// there by somebody else, who may not have flushed it.
  void verified(std::size_t destination, const PlatformKit::Path& final, bool resumed);

  /// Flushes everything. Where that fails, the verified outcomes of the files concerned become
  /// failures: their copies might not be there any more after a power cut. On a destination that
  /// was given up before, outcomes stay as they are: it is known to be incomplete, and what was
  /// verified there up to then is the more useful thing to tell.
  void flush(std::vector<OffloadedFile>& files, DestinationHealth& health);

 private:
  struct Unflushed {
    PlatformKit::Path folder;
    int error;
  };
  [[nodiscard]] std::vector<Unflushed> flushDestination(std::size_t destination);

  PlatformKit::System system_;
  std::vector<PlatformKit::Path> destinations_;
  std::vector<std::set<PlatformKit::Path>> folders_;
  std::vector<std::string> lastFolders_;  // of the copy verified last
  std::vector<bool> resumed_;
};

}  // namespace OffloadKit
