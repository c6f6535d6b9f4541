#include "DeviceKit/CardEjector.h"

#include "DeviceKit/DiskEnumerator.h"

namespace DeviceKit {
namespace {

using Answer = PlatformKit::Ejector::Answer;
using Kind = Reason::Kind;

// None when it was ejected.
std::optional<Kind> whyNot(Answer answer) {
  switch (answer) {
    case Answer::ejected:
      break;
    case Answer::unmountedOnly:
      return Kind::unmountedOnly;
    case Answer::busy:
      return Kind::cardInUse;
    case Answer::declined:
      return Kind::ejectDeclined;
    case Answer::unavailable:
      return Kind::nobodyEjects;
    case Answer::failed:
      return Kind::ejectFailed;
  }
  return std::nullopt;
}

}  // namespace

std::optional<Reason> CardEjector::eject(const PlatformKit::Path& volume,
                                         const std::string& name) const {
  const auto disk = disks_.holding(volume);
  if (!disk) return Reason(Kind::noSingleDisk, {name});
  if (!DiskEnumerator::isMemoryCardLike(*disk, true)) return Reason(Kind::notACard, {name});
  const auto kind =
      whyNot(ejector_ == nullptr ? Answer::unavailable : ejector_->ejectDisk(disk->identifier));
  return kind ? std::optional(Reason(*kind, {name})) : std::nullopt;
}

}  // namespace DeviceKit
