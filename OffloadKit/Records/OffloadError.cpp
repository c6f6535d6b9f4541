#include "OffloadKit/Records/OffloadError.h"

#include "OffloadKit/Wording/ShownReason.h"
#include "TextKit/ByteCount.h"
#include "TextKit/Translation.h"

namespace OffloadKit {
namespace {

using TextKit::filled;
using TextKit::translatable;

/// How a description says things: in English, or in the user's language.
struct Wording {
  std::string (*text)(const char* source);
  std::string (*size)(std::uint64_t bytes);
  std::string (*reason)(const std::string& reason);
};

struct Describe {
  const Wording& say;

  std::string operator()(const OffloadError::SourceUnreadable& error) const {
    return say.reason("The card couldn't be read: " + error.what);
  }
  std::string operator()(const OffloadError::DestinationOnSource& error) const {
    return filled(
        say.text(translatable("Errors", "%1 is on the card itself. Choose a different drive.")),
        {error.destination});
  }
  std::string operator()(const OffloadError::DestinationUnavailable& error) const {
    return filled(say.text(translatable("Errors", "%1 isn't available or can't be written to.")),
                  {error.destination});
  }
  std::string operator()(const OffloadError::DestinationInUse& error) const {
    return filled(say.text(translatable("Errors",
                                        "%1 is already being copied to. Choose another folder, or "
                                        "wait until that is finished.")),
                  {error.destination});
  }
  std::string operator()(const OffloadError::NotEnoughSpace& error) const {
    return filled(say.text(translatable("Errors", "%1 needs %2 free but has %3.")),
                  {error.destination, say.size(error.needed), say.size(error.available)});
  }
  std::string operator()(const OffloadError::CardImageUnavailable& error) const {
    return filled(say.text(translatable("Errors",
                                        "The card couldn't be opened for the card image: %1 Turn "
                                        "off the card image to offload without it.")),
                  {say.reason(error.reason)});
  }
  std::string operator()(const OffloadError::NoFiles&) const {
    return say.text(translatable("Errors", "There are no files on the card to offload."));
  }
  std::string operator()(const OffloadError::Cancelled&) const {
    return say.text(translatable("Errors", "The offload was stopped."));
  }
};

constexpr Wording kEnglish = {[](const char* source) { return std::string(source); },
                              TextKit::byteCountText,
                              [](const std::string& reason) { return reason; }};

constexpr Wording kShown = {[](const char* source) { return TextKit::translate("Errors", source); },
                            TextKit::shownByteCount, shownReason};

}  // namespace

OffloadError::OffloadError(Kind kind)
    : kind_(std::move(kind)), description_(std::visit(Describe{kEnglish}, kind_)) {}

std::string OffloadError::shownDescription() const {
  return std::visit(Describe{kShown}, kind_);
}

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
