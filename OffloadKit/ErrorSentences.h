#pragma once

#include "PlatformKit/Posix/SystemText.h"
#include "PlatformKit/System.h"

#include <string>

namespace OffloadKit {

using PlatformKit::systemText;

/// A short sentence for people about a drive, from the system's error number: "No permission to
/// write here", "The drive reported a write error", "The drive was disconnected", "The drive is
/// full", or the system's own text. A number the system does not know counts as EIO. In English, as
/// results keep it. Any thread.
std::string describe(int error);

/// Whether an error means that the drive itself is of no more use in this run: EIO, ENXIO, ENODEV
/// or ENOSPC.
bool endsTheDrive(int error);

/// How people know a destination: the name of its volume and its own last component, as in
/// "T7 Shield (2026-10-07_A001)"; its path where the volume has no name. It need not exist yet.
std::string displayName(PlatformKit::System system, const PlatformKit::Path& destination);

/// The path itself when something is there, else its nearest ancestor that exists, at worst the
/// root. `path` is absolute.
PlatformKit::Path nearestExisting(PlatformKit::FileSystem& fileSystem,
                                  const PlatformKit::Path& path);

/// The last component, also of a path that ends in a slash. Bytes as given.
std::string lastComponent(const PlatformKit::Path& path);

}  // namespace OffloadKit
