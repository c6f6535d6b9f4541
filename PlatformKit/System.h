#pragma once

#include "PlatformKit/Dates.h"
#include "PlatformKit/FileSystem.h"
#include "PlatformKit/Volumes.h"

namespace PlatformKit {

/// The services of the operating system that the engine works with. Made once in main (or in a
/// test), passed down; whoever made the services keeps them alive.
struct System {
  FileSystem& fileSystem;
  Volumes& volumes;
  const Clock& clock;
};

}  // namespace PlatformKit
