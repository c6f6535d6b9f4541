#include "ZephrimarkOffload/Model/StepTexts.h"

#include "PlatformKit/Unicode.h"

#include <fmt/format.h>

namespace ZephrimarkOffload {
namespace {

using Phase = OffloadKit::OffloadProgress::Phase;

std::string doneStatus(const OffloadKit::OffloadResult& result) {
  if (!result.allVerified()) {
    return "Some files weren't verified on every drive. Don't format the card yet.";
  }
  if (!result.unreadable.empty()) {
    return "Some of the card couldn't be read. Don't format the card yet.";
  }
  return "Every file is verified on every drive. Check the report before you format the card.";
}

std::string runningStatus(const StepFacts& facts) {
  const Phase phase = facts.progress ? facts.progress->phase : Phase::scanning;
  if (phase == Phase::finishing) return "Writing the report and checksums.";
  if (phase == Phase::imaging) return "Saving the card image for Kestrine, then checking it.";
  if (phase == Phase::verifying) {
    return "Reading every copy back from the drives and comparing it with the card.";
  }
  return fmt::format("Copying {} to {} drive{}. Keep everything connected.",
                     PlatformKit::singleLineText(facts.sourceName), facts.destinations,
                     facts.destinations == 1 ? "" : "s");
}

std::string setupStatus(const StepFacts& facts) {
  if (!facts.hasSource) return "Insert a card, or choose a folder to offload.";
  if (facts.destinations == 0) return "Add the drives to copy to. Two is safer than one.";
  return facts.blocker.value_or("Ready. Check the folder name, then press Start Offload.");
}

}  // namespace

int step(const StepFacts& facts) {
  if (facts.stage.kind() == Stage::Kind::done) return 4;
  if (facts.stage.kind() == Stage::Kind::running) return 2;
  if (!facts.hasSource) return 0;
  return facts.destinations == 0 ? 1 : 2;
}

std::string stepStatus(const StepFacts& facts) {
  switch (facts.stage.kind()) {
    case Stage::Kind::done:
      return doneStatus(*facts.stage.result());
    case Stage::Kind::failed:
      return "The offload couldn't start. See the message below.";
    case Stage::Kind::running:
      return runningStatus(facts);
    case Stage::Kind::setup:
      break;
  }
  return setupStatus(facts);
}

}  // namespace ZephrimarkOffload
