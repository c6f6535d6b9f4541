#pragma once

#include "OffloadKit/Records/SourceFile.h"
#include "OffloadKit/Transfer/PendingCopy.h"
#include "OffloadKit/Transfer/TemporaryNames.h"

#include <optional>
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

/// What was found out about the folder that a file goes to, so that the files of a group that lie in
/// one folder ask the drive once. Starts empty; of one destination; one thread at a time.
struct KnownFolder {
  PlatformKit::Path path;
  bool leadsOut = false;  ///< reached by a link out of the destination
  bool exists = false;
};

/// What is to be done for one file on one destination, and why not more.
struct TargetChoice {
  CopyTarget target;
  std::optional<Reason> refusal;  ///< why nothing is to be done
  int error = 0;                  ///< the system's error number that left nothing to be done
};

/// Decides what to do for one file on one destination: nothing where a link leads out of it, resume
/// where a copy is already there, nothing where something else has the name, else write (missing
/// folders are made, the temporary file is opened). `source` is the file on the card, `temporary`
/// the relative path of its temporary copy. Any thread.
TargetChoice chooseTarget(PlatformKit::FileSystem& fileSystem, const SourceFile& file,
                          const PlatformKit::Path& source, const PlatformKit::Path& destination,
                          const std::string& temporary, KnownFolder& folder);

}  // namespace OffloadKit
