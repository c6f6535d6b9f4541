#include "DeviceKit/CardEjector.h"

#include "DeviceKit/DiskEnumerator.h"
#include "TextKit/Translation.h"

namespace DeviceKit {
namespace {

using TextKit::filled;
using Answer = PlatformKit::Ejector::Answer;

const char* sentenceFor(Answer answer) {
  switch (answer) {
    case Answer::ejected:
      break;
    case Answer::unmountedOnly:
      return "%1 is unmounted and can be taken out, but its drive did not eject it.";
    case Answer::busy:
      return "%1 couldn't be ejected because a program is still using it. Close what uses it, then "
             "try again.";
    case Answer::declined:
      return "Permission to eject %1 was declined. Unmount it before you take it out.";
    case Answer::unavailable:
      return "There is no service on this computer that can eject %1. It is still mounted; unmount "
             "it before you take it out.";
    case Answer::failed:
      return "%1 reported an error while it was unmounted. Try again before you take it out.";
  }
  return "";
}

}  // namespace

std::optional<std::string> CardEjector::eject(const PlatformKit::Path& volume,
                                              const std::string& name) const {
  const auto disk = disks_.holding(volume);
  if (!disk) {
    return filled(
        "There is no single disk under %1 that could be ejected. If it is mounted, unmount it "
        "before you take it out.",
        {name});
  }
  if (!DiskEnumerator::isMemoryCardLike(*disk, true)) {
    return filled("%1 is not on a memory card or an external drive. It was not ejected.", {name});
  }
  const Answer answer =
      ejector_ == nullptr ? Answer::unavailable : ejector_->ejectDisk(disk->identifier);
  if (answer == Answer::ejected) return std::nullopt;
  return filled(sentenceFor(answer), {name});
}

}  // namespace DeviceKit
