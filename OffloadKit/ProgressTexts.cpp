#include "OffloadKit/ProgressTexts.h"

#include "OffloadKit/Format.h"
#include "PlatformKit/ByteCount.h"
#include "PlatformKit/Unicode.h"

#include <algorithm>

#include <fmt/format.h>

namespace OffloadKit::ProgressTexts {
namespace {

using Phase = OffloadProgress::Phase;

constexpr const char* kUnknown = "–";

// Below this share of the work an estimate would jump about.
constexpr double kEnoughForAnEstimate = 0.02;

}  // namespace

std::string phase(const Progress& progress, std::size_t destinations) {
  switch (progress ? progress->phase : Phase::scanning) {
    case Phase::scanning:
      break;
    case Phase::copying:
      return fmt::format("Copying to {} drive{} and checking each copy", destinations,
                         destinations == 1 ? "" : "s");
    case Phase::verifying:
      return "Reading the copies back and comparing";
    case Phase::imaging:
      return "Saving the card image for Kestrine and checking it";
    case Phase::finishing:
      return "Writing the report and checksums";
  }
  return "Reading the card…";
}

std::string files(const Progress& progress) {
  if (!progress) return kUnknown;
  return fmt::format("{} of {}", progress->filesDone, progress->filesTotal);
}

std::string speed(const Progress& progress) {
  if (!progress || !(progress->bytesPerSecond > 0)) return kUnknown;
  const double highest = 1e18;  // keeps the conversion to whole bytes defined
  const auto bytes = static_cast<std::uint64_t>(std::min(progress->bytesPerSecond, highest));
  return PlatformKit::byteCountText(bytes) + "/s";
}

std::string remaining(const Progress& progress, double elapsed) {
  if (!progress || !(progress->fraction > kEnoughForAnEstimate)) return "Working it out…";
  return "About " + Format::duration(elapsed / progress->fraction - elapsed);
}

std::string drive(const OffloadProgress::Drive& drive) {
  std::string text = fmt::format("{} verified", drive.verified);
  if (drive.failed > 0) {
    text += fmt::format(" · {} not verified: {}", drive.failed,
                        PlatformKit::singleLineText(drive.lastFailure));
  }
  return text;
}

}  // namespace OffloadKit::ProgressTexts
