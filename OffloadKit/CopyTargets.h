#pragma once

#include "OffloadKit/DestinationHealth.h"
#include "OffloadKit/OffloadResult.h"
#include "OffloadKit/PendingCopy.h"
#include "OffloadKit/SourceFile.h"

#include <string>
#include <string_view>
#include <unordered_set>
#include <variant>
#include <vector>

namespace OffloadKit {

/// Nothing is done on this destination for this file; its outcome is decided.
struct SkipTarget {};
/// A copy from an earlier run is at `final`; it is only read back.
struct ResumeTarget {
  PlatformKit::Path final;
};
/// The copy is written under a temporary name.
struct WriteTarget {
  PendingCopy copy;
};
/// What is to be done on one destination for one file.
using CopyTarget = std::variant<SkipTarget, ResumeTarget, WriteTarget>;

/// Whether a copy of the file lies in the destination folder already: a regular file of the same
/// size whose modification date differs by less than two seconds (file systems round dates).
/// Content is not looked at. Any error counts as no. Any thread.
bool alreadyThere(PlatformKit::FileSystem& fileSystem, const SourceFile& file,
                  const PlatformKit::Path& destination);

/// The temporary names of the copies of one run.
class TemporaryNames {
 public:
  /// `relativePaths`: all that the run copies, so that no temporary name is ever the name of one of
  /// them.
  explicit TemporaryNames(const std::vector<std::string_view>& relativePaths);

  /// The relative path of the file's temporary copy: in the same folder, hidden,
  /// "." + name + ".zmpart", shortened on a character boundary where that would not fit in 255
  /// bytes.
  [[nodiscard]] std::string forFile(const std::string& relativePath) const;

 private:
  [[nodiscard]] bool isTaken(const std::string& relativePath) const;

  std::unordered_set<std::string> taken_;
};

/// Whether the file lies in the destination folder by way of a link out of it. Any thread.
bool leadsOut(PlatformKit::FileSystem& fileSystem, const PlatformKit::Path& file,
              const PlatformKit::Path& destination);

/// Decides what to do for one file on every destination, in order: nothing where the destination
/// was given up or a link leads out of it, resume where a copy is already there, nothing where something else has the name,
/// else write (missing folders are made, the temporary file is opened). `outcomes` has one entry
/// per destination; those of destinations where nothing is to be done are set to the reason.
std::vector<CopyTarget> chooseTargets(PlatformKit::FileSystem& fileSystem, const SourceFile& file,
                                      const PlatformKit::Path& source,
                                      const std::vector<PlatformKit::Path>& destinations,
                                      const TemporaryNames& temporaryNames,
                                      DestinationHealth& health,
                                      std::vector<OffloadedFile::Outcome>& outcomes);

}  // namespace OffloadKit
