#include "DeviceKit/CardEjector.h"

#include "DeviceKit/DiskEnumerator.h"

namespace DeviceKit {
namespace {

using Answer = PlatformKit::Ejector::Answer;

std::string sentenceFor(Answer answer, const std::string& name) {
  switch (answer) {
    case Answer::ejected:
      break;
    case Answer::unmountedOnly:
      return name + " is unmounted and can be taken out, but its drive did not eject it.";
    case Answer::busy:
      return name +
             " couldn't be ejected because a program is still using it. Close what uses it, then "
             "try again.";
    case Answer::declined:
      return "Permission to eject " + name + " was declined. Unmount it before you take it out.";
    case Answer::unavailable:
      return "There is no service on this computer that can eject " + name +
             ". It is still mounted; unmount it before you take it out.";
    case Answer::failed:
      return name + " reported an error while it was unmounted. Try again before you take it out.";
  }
  return {};
}

}  // namespace

std::optional<std::string> CardEjector::eject(const PlatformKit::Path& volume,
                                              const std::string& name) const {
  const auto disk = disks_.holding(volume);
  if (!disk) {
    return "There is no single disk under " + name +
           " that could be ejected. If it is mounted, unmount it before you take it out.";
  }
  if (!DiskEnumerator::isMemoryCardLike(*disk, true)) {
    return name + " is not on a memory card or an external drive. It was not ejected.";
  }
  const Answer answer =
      ejector_ == nullptr ? Answer::unavailable : ejector_->ejectDisk(disk->identifier);
  if (answer == Answer::ejected) return std::nullopt;
  return sentenceFor(answer, name);
}

}  // namespace DeviceKit
