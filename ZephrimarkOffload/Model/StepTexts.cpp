#include "ZephrimarkOffload/Model/StepTexts.h"

#include "OffloadKit/Records/Verdict.h"
#include "TextKit/Translation.h"
#include "TextKit/Unicode.h"

namespace ZephrimarkOffload {
namespace {

using TextKit::filled;
using TextKit::translate;
using Finding = OffloadKit::Verdict::Finding;
using Phase = OffloadKit::OffloadProgress::Phase;

std::string doneStatus(const OffloadKit::OffloadResult& result) {
  const auto worst = OffloadKit::Verdict(result).worst();
  if (worst == Finding::notVerified) {
    return translate("Steps",
                     "Some files weren't verified on every drive. Don't format the card yet.");
  }
  if (worst == Finding::cardUnreadable) {
    return translate("Steps", "Some of the card couldn't be read. Don't format the card yet.");
  }
  return translate(
      "Steps",
      "Every file is verified on every drive. Check the report before you format the card.");
}

std::string runningStatus(const Running& running, const StepFacts& facts) {
  const Phase phase = running.progress ? running.progress->phase : Phase::scanning;
  if (phase == Phase::finishing) return translate("Steps", "Writing the report and checksums.");
  if (phase == Phase::imaging)
    return translate("Steps", "Saving the card image for Kestrine, then checking it.");
  if (phase == Phase::verifying) {
    return translate("Steps",
                     "Reading every copy back from the drives and comparing it with the card.");
  }
  const std::size_t drives = facts.destinations;
  return filled(translate("Steps", "Copying %1 to %2 drives. Keep everything connected.",
                          "Copying %1 to %2 drive. Keep everything connected.", drives),
                {TextKit::singleLineText(facts.sourceName), std::to_string(drives)});
}

std::string setupStatus(const StepFacts& facts) {
  if (!facts.hasSource) return translate("Steps", "Insert a card, or choose a folder to offload.");
  if (facts.destinations == 0)
    return translate("Steps", "Add the drives to copy to. Two is safer than one.");
  if (facts.blocker) return *facts.blocker;
  return translate("Steps", "Ready. Check the folder name, then press Start Offload.");
}

}  // namespace

int step(const StepFacts& facts) {
  if (is<Done>(facts.stage)) return 4;
  if (is<Running>(facts.stage)) return 2;
  if (!facts.hasSource) return 0;
  return facts.destinations == 0 ? 1 : 2;
}

std::string stepStatus(const StepFacts& facts) {
  if (const auto* done = std::get_if<Done>(&facts.stage)) return doneStatus(*done->result);
  if (const auto* running = std::get_if<Running>(&facts.stage)) {
    return runningStatus(*running, facts);
  }
  if (is<Failed>(facts.stage)) {
    return translate("Steps", "The offload couldn't start. See the message below.");
  }
  return setupStatus(facts);
}

}  // namespace ZephrimarkOffload
