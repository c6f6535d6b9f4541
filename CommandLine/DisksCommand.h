#pragma once

#include "PlatformKit/Disks.h"

namespace CommandLine {

/// Lists the disks that can be memory cards, or with `all` every disk, disk images and internal
/// ones included. For people a table of name, volumes, size, device and kind; with `json` one
/// object per disk and line, with "type" ("disk"), "name", "volumes" (a list), "size" (bytes),
/// "device" (path), "kind" ("card", "drive", "disk image", "virtual", "internal"), "memoryCard"
/// (whether its name says so), "internal", "removable", "system" and "image". Writes to standard
/// output; answers the exit status, which is always allVerified (0): no disk is an answer, too.
/// Main thread.
int runDisks(bool all, bool json, PlatformKit::Disks& disks);

}  // namespace CommandLine
