#pragma once

#include "OffloadKit/Copying/DestinationHealth.h"
#include "OffloadKit/Records/OffloadResult.h"
#include "PlatformKit/System.h"

#include <cstddef>
#include <set>
#include <string>
#include <vector>

namespace OffloadKit {

/// Makes the names of a run's verified copies survive a power cut and a drive that dies: remembers
/// the folders they lie in and flushes them, together with all folders above them on their volume.
/// Those may be new without being the run's: a run that was killed left them, or somebody made them
/// just before. Knows of each destination up to which copy its names are on the drive for certain.
/// The run's thread, but for `flushNow`.
class FolderFlush {
 public:
  /// All outlive it.
  /// `probe`: the relative path of a hidden file that no copy has.
  FolderFlush(PlatformKit::System system, const std::vector<PlatformKit::Path>& destinations,
              std::string probe, DestinationHealth& health);
  /// Flushes what has not been flushed; failures are ignored, since nobody is left to be told.
  ~FolderFlush();
  FolderFlush(const FolderFlush&) = delete;
  FolderFlush& operator=(const FolderFlush&) = delete;

  /// A verified copy now has its final name, which lies on the destination. `resumed`: it was put
  /// there by somebody else, who may not have flushed it.
  void verified(std::size_t destination, const PlatformKit::Path& final, bool resumed);

  /// Flushes the names given so far on a destination, where a file has just been flushed without an
  /// error. Several destinations at once, each on a thread of its own, while no names are given there.
  void flushNow(std::size_t destination);

  /// The destination's volume was flushed as a whole after the last name was given there. `error`: 0,
  /// or the number that this answered. `provenSince`: files were flushed on it afterwards, all
  /// without an error; some file systems say yes to the flush of a volume that is lost already.
  void volumeFlushed(std::size_t destination, int error, bool provenSince);

  /// Flushes everything, and makes failures of the verified outcomes whose names are not on the
  /// drive for certain: where flushing failed, now or before, and where the destination is gone.
  /// `files`: those of the run, in the order in which they got their names.
  void flushAll(std::vector<OffloadedFile>& files);

 private:
  /// Below this folder names may be lost.
  struct Failure {
    PlatformKit::Path folder;
    Reason reason;
  };
  struct Drive {
    PlatformKit::Path destination;
    std::set<PlatformKit::Path> unflushed;  ///< folders with names that have yet to be flushed
    std::set<PlatformKit::Path>
        reachable;              ///< folders whose own names were flushed, up to the root
    std::string lastFolder;     ///< of the copy verified last
    bool holdsResumed = false;  ///< copies of others since the volume was flushed
    std::size_t verified = 0;   ///< copies so far
    std::size_t flushed = 0;    ///< so many of them, from the first on, it is said
    std::size_t durable = 0;    ///< and so many for certain
    // Kept, because a second flush may say yes: an error is told once.
    std::vector<Failure> failures;
  };

  void flush(std::size_t destination);
  void probe(std::size_t destination);
  void failed(std::size_t destination, const PlatformKit::Path& folder, int error);
  /// All names given so far were flushed, unless something failed.
  void flushed(Drive& drive);
  void takeBack(std::size_t destination, std::vector<OffloadedFile>& files) const;

  PlatformKit::System system_;
  const std::string probe_;
  DestinationHealth& health_;
  std::vector<Drive> drives_;
};

}  // namespace OffloadKit
