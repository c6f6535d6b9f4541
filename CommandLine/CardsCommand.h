#pragma once

#include "PlatformKit/MountedVolumes.h"

#include <memory>

namespace CommandLine {

/// Lists the mounted volumes that can be offloaded as cards or copied to, in the order of mounting.
/// For people a table of name, free space, size, kind and place; with `json` one object per volume
/// and line, with "type" ("volume"), "name", "path", "card" and "drive" (whether it is one),
/// "capacity" and "available" (bytes; 0 when unknown). Volumes that do not tell their size within
/// two seconds, as those of a dead server, are listed without; threads that still wait for them
/// keep `volumes` alive. Writes to standard output; answers the exit status, which is always
/// allVerified (0): no volume is an answer, too. Main thread.
int runCards(bool json, const std::shared_ptr<PlatformKit::MountedVolumes>& volumes);

}  // namespace CommandLine
