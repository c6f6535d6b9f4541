#include "OffloadKit/Wording/ProgressTexts.h"

#include "OffloadKit/Wording/Format.h"
#include "OffloadKit/Wording/ShownReason.h"
#include "TextKit/Translation.h"
#include "TextKit/Unicode.h"

#include <algorithm>

namespace OffloadKit::ProgressTexts {
namespace {

using Phase = OffloadProgress::Phase;
using TextKit::filled;
using TextKit::translate;

constexpr const char* kUnknown = "–";

// Below this share of the work an estimate would jump about.
constexpr double kEnoughForAnEstimate = 0.02;

}  // namespace

std::string phase(const Progress& progress, std::size_t destinations) {
  switch (progress ? progress->phase : Phase::scanning) {
    case Phase::scanning:
      break;
    case Phase::copying:
      return filled(translate("Progress", "Copying to %1 drives and checking each copy",
                              "Copying to %1 drive and checking each copy", destinations),
                    {std::to_string(destinations)});
    case Phase::verifying:
      return translate("Progress", "Reading the copies back and comparing");
    case Phase::imaging:
      return translate("Progress", "Saving the card image for Kestrine and checking it");
    case Phase::finishing:
      return translate("Progress", "Writing the report and checksums");
  }
  return translate("Progress", "Reading the card…");
}

std::string files(const Progress& progress) {
  if (!progress) return kUnknown;
  return filled(translate("Progress", "%1 of %2"),
                {std::to_string(progress->filesDone), std::to_string(progress->filesTotal)});
}

std::string speed(const Progress& progress) {
  if (!progress || !(progress->bytesPerSecond > 0)) return kUnknown;
  const double highest = 1e18;  // keeps the conversion to whole bytes defined
  const auto bytes = static_cast<std::uint64_t>(std::min(progress->bytesPerSecond, highest));
  return Format::speed(bytes);
}

std::string remaining(const Progress& progress, double elapsed) {
  if (!progress || !(progress->fraction > kEnoughForAnEstimate)) {
    return translate("Progress", "Working it out…");
  }
  return filled(translate("Progress", "About %1"),
                {Format::shownDuration(elapsed / progress->fraction - elapsed)});
}

std::string drive(const OffloadProgress::Drive& drive) {
  const std::string verified = std::to_string(drive.verified);
  if (drive.failed == 0) {
    return filled(translate("Progress", "%1 verified"), {verified});
  }
  return filled(translate("Progress", "%1 verified · %2 not verified: %3"),
                {verified, std::to_string(drive.failed),
                 drive.lastFailure ? TextKit::singleLineText(shown(*drive.lastFailure)) : ""});
}

}  // namespace OffloadKit::ProgressTexts
