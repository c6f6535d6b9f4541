#include "OffloadKit/OffloadError.h"

#include "PlatformKit/ByteCount.h"

namespace OffloadKit {
namespace {

struct Describe {
  std::string operator()(const OffloadError::SourceUnreadable& error) const {
    return "The card couldn't be read: " + error.what;
  }
  std::string operator()(const OffloadError::DestinationOnSource& error) const {
    return error.destination + " is on the card itself. Choose a different drive.";
  }
  std::string operator()(const OffloadError::DestinationUnavailable& error) const {
    return error.destination + " isn't available or can't be written to.";
  }
  std::string operator()(const OffloadError::DestinationInUse& error) const {
    return error.destination +
           " is already being copied to. Choose another folder, or wait until that is finished.";
  }
  std::string operator()(const OffloadError::NotEnoughSpace& error) const {
    return error.destination + " needs " + PlatformKit::byteCountText(error.needed) +
           " free but has " + PlatformKit::byteCountText(error.available) + ".";
  }
  std::string operator()(const OffloadError::CardImageUnavailable& error) const {
    return "The card couldn't be opened for the card image: " + error.reason +
           " Turn off the card image to offload without it.";
  }
  std::string operator()(const OffloadError::NoFiles&) const {
    return "There are no files on the card to offload.";
  }
  std::string operator()(const OffloadError::Cancelled&) const {
    return "The offload was stopped.";
  }
};

}  // namespace

OffloadError::OffloadError(Kind kind)
    : kind_(std::move(kind)), description_(std::visit(Describe{}, kind_)) {}

OffloadError OffloadError::sourceUnreadable(std::string what) {
  return OffloadError(SourceUnreadable{std::move(what)});
}
OffloadError OffloadError::destinationOnSource(std::string destination) {
  return OffloadError(DestinationOnSource{std::move(destination)});
}
OffloadError OffloadError::destinationUnavailable(std::string destination) {
  return OffloadError(DestinationUnavailable{std::move(destination)});
}
OffloadError OffloadError::destinationInUse(std::string destination) {
  return OffloadError(DestinationInUse{std::move(destination)});
}
OffloadError OffloadError::notEnoughSpace(std::string destination, std::uint64_t needed,
                                          std::uint64_t available) {
  return OffloadError(NotEnoughSpace{std::move(destination), needed, available});
}
OffloadError OffloadError::cardImageUnavailable(std::string reason) {
  return OffloadError(CardImageUnavailable{std::move(reason)});
}
OffloadError OffloadError::noFiles() {
  return OffloadError(NoFiles{});
}
OffloadError OffloadError::cancelled() {
  return OffloadError(Cancelled{});
}

}  // namespace OffloadKit
