#pragma once

#include "DeviceKit/DiskEnumerator.h"
#include "HashKit/HashAlgorithm.h"
#include "OffloadKit/Records/OffloadPlan.h"
#include "PlatformKit/System.h"

#include <stdexcept>
#include <string>
#include <vector>

namespace CommandLine {

/// What was typed behind "zephrimark offload".
struct OffloadArguments {
  std::string source;
  std::vector<std::string> destinations;
  std::string folderTemplate = "{date}/{card}";
  std::string project;
  HashKit::HashAlgorithm checksum = HashKit::HashAlgorithm::xxh64;
  bool readOnce = false;
  bool cardImage = false;
  bool eject = false;  ///< the card, once everything is verified
  bool json = false;
  bool quiet = false;
};

/// Arguments that cannot be meant as they stand; the text is a sentence in the user's language.
class ArgumentError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The source is not there or not a folder; the text is a sentence in the user's language.
class SourceError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The plan that the arguments ask for: absolute paths, on every destination the folder that the
/// template names, and the card image, if wanted, on the destination with the most free space.
/// Throws ArgumentError and SourceError.
OffloadKit::OffloadPlan planFor(const OffloadArguments& arguments, PlatformKit::System system,
                                const DeviceKit::DiskEnumerator& disks);

}  // namespace CommandLine
