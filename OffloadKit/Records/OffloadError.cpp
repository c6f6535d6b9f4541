#include "OffloadKit/Records/OffloadError.h"

#include <utility>

namespace OffloadKit {

using Kind = Reason::Kind;

OffloadError::OffloadError(Reason reason)
    : reason_(std::move(reason)), english_(reason_.english()) {}

OffloadError OffloadError::sourceUnreadable(Reason reason) {
  return OffloadError({Kind::cardUnreadable, {}, std::move(reason)});
}
OffloadError OffloadError::destinationOnSource(std::string destination) {
  return OffloadError(Reason(Kind::onTheCard, {std::move(destination)}));
}
OffloadError OffloadError::destinationUnavailable(std::string destination) {
  return OffloadError(Reason(Kind::notAvailable, {std::move(destination)}));
}
OffloadError OffloadError::destinationInUse(std::string destination) {
  return OffloadError(Reason(Kind::inUse, {std::move(destination)}));
}
OffloadError OffloadError::notEnoughSpace(std::string destination, std::uint64_t needed,
                                          std::uint64_t available) {
  return OffloadError(Reason(Kind::notEnoughSpace, {std::move(destination), Reason::Bytes{needed},
                                                    Reason::Bytes{available}}));
}
OffloadError OffloadError::cardImageUnavailable(Reason reason) {
  return OffloadError({Kind::noCardImage, {}, std::move(reason)});
}
OffloadError OffloadError::noFiles() {
  return OffloadError(Reason(Kind::noFiles));
}
OffloadError OffloadError::cancelled() {
  return OffloadError(Reason(Kind::stopped));
}

}  // namespace OffloadKit
