#include "DeviceKit/Reason.h"

#include "PlatformKit/Posix/SystemText.h"
#include "TextKit/ByteCount.h"
#include "TextKit/Translation.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cerrno>
#include <string_view>
#include <utility>

namespace DeviceKit {
namespace {

using TextKit::translatable;
using Kind = Reason::Kind;

struct Pattern {
  Kind kind;
  const char* english;
};

// Every sentence that is kept as a reason, in the order of the kinds.
constexpr std::array kPatterns = {
    // One copy
    Pattern{Kind::notCopied, translatable("Errors", "Not copied")},
    Pattern{Kind::copyUnreadable, translatable("Errors", "The copy couldn't be read back")},
    Pattern{Kind::copyDiffers, translatable("Errors", "The copy didn't match the original")},
    Pattern{Kind::linkLeadsOut,
            translatable("Errors", "A link in the destination folder leads to another place")},
    Pattern{Kind::otherFileThere,
            translatable("Errors",
                         "A different file with this name is already in the destination folder")},
    Pattern{Kind::isTheCardsOwn,
            translatable("Errors", "This is the card's own file, not a copy of it")},
    // A drive
    Pattern{Kind::noPermission, translatable("Errors", "No permission to write here")},
    Pattern{Kind::writeError, translatable("Errors", "The drive reported a write error")},
    Pattern{Kind::disconnected, translatable("Errors", "The drive was disconnected")},
    Pattern{Kind::driveFull, translatable("Errors", "The drive is full")},
    // The card
    Pattern{Kind::cardUnreadable, translatable("Errors", "The card couldn't be read: %1")},
    Pattern{Kind::filesNotListed, translatable("Errors", "couldn't list its files")},
    Pattern{Kind::otherCardThere, translatable("Errors", "Another card is in its place now.")},
    Pattern{Kind::changedSize, translatable("Errors", "%1 changed size while it was being read")},
    Pattern{Kind::readDifferently,
            translatable("Errors",
                         "%1 read differently the second time. The card or reader may be "
                         "failing.")},
    // The card image
    Pattern{Kind::imageThere, translatable("Errors", "An image with this name is already there")},
    Pattern{Kind::cardStopped, translatable("Errors", "The card stopped responding")},
    Pattern{Kind::imageUnreadable, translatable("Errors", "The image couldn't be read back")},
    Pattern{Kind::imageDiffers,
            translatable("Errors", "The image didn't match what was read from the card")},
    // A device
    Pattern{Kind::cannotOpen, translatable("Errors", "Could not open %1: %2")},
    Pattern{Kind::mayNotRead, translatable("Errors", "Authorization to read %1 was denied.")},
    Pattern{Kind::notReadable, translatable("Errors", "%1 is not a readable file or device.")},
    Pattern{Kind::readFailed, translatable("Errors", "Read failed at offset %1: %2")},
    // Ejecting
    Pattern{Kind::unmountedOnly,
            translatable("Errors",
                         "%1 is unmounted and can be taken out, but its drive did not "
                         "eject it.")},
    Pattern{Kind::cardInUse,
            translatable("Errors",
                         "%1 couldn't be ejected because a program is still using it. Close what "
                         "uses it, then try again.")},
    Pattern{Kind::ejectDeclined,
            translatable("Errors",
                         "Permission to eject %1 was declined. Unmount it before you "
                         "take it out.")},
    Pattern{Kind::nobodyEjects,
            translatable("Errors",
                         "There is no service on this computer that can eject %1. It is still "
                         "mounted; unmount it before you take it out.")},
    Pattern{Kind::ejectFailed,
            translatable("Errors",
                         "%1 reported an error while it was unmounted. Try again before "
                         "you take it out.")},
    Pattern{Kind::noSingleDisk,
            translatable("Errors",
                         "There is no single disk under %1 that could be ejected. If it is "
                         "mounted, unmount it before you take it out.")},
    Pattern{Kind::notACard,
            translatable("Errors",
                         "%1 is not on a memory card or an external drive. It was not "
                         "ejected.")},
    Pattern{Kind::notMounted,
            translatable("Errors", "%1 is not mounted any more, so it was not ejected.")},
    Pattern{Kind::notAllVerified,
            translatable("Errors", "The card was not ejected because not everything is verified.")},
    Pattern{Kind::resultNotWritten,
            translatable("Errors",
                         "The card was not ejected because the result could not be written.")},
    // A run
    Pattern{Kind::onTheCard,
            translatable("Errors", "%1 is on the card itself. Choose a different drive.")},
    Pattern{Kind::notAvailable,
            translatable("Errors", "%1 isn't available or can't be written to.")},
    Pattern{Kind::inUse,
            translatable("Errors",
                         "%1 is already being copied to. Choose another folder, or wait until that "
                         "is finished.")},
    Pattern{Kind::notEnoughSpace, translatable("Errors", "%1 needs %2 free but has %3.")},
    Pattern{Kind::noCardImage,
            translatable("Errors",
                         "The card couldn't be opened for the card image: %1 Turn off the card "
                         "image to offload without it.")},
    Pattern{Kind::noFiles, translatable("Errors", "There are no files on the card to offload.")},
    Pattern{Kind::stopped, translatable("Errors", "The offload was stopped.")},
    // What has no words of its own
    Pattern{Kind::about, "%1: %2"},
    Pattern{Kind::ofSystem, ""},
    Pattern{Kind::fromOutside, "%1"},
};

constexpr bool isInOrder() {
  for (std::size_t i = 0; i < kPatterns.size(); ++i) {
    if (static_cast<std::size_t>(kPatterns[i].kind) != i) return false;
  }
  return kPatterns.size() == static_cast<std::size_t>(Kind::fromOutside) + 1;
}
static_assert(isInOrder());

// The system's own texts for what file systems and disks answer. Here to be collected for the
// translators: they are looked up as the system has them.
[[maybe_unused]] constexpr std::array kSystemTexts = {
    translatable("Errors", "Bad message"),
    translatable("Errors", "Cannot allocate memory"),
    translatable("Errors", "Connection timed out"),
    translatable("Errors", "Device or resource busy"),
    translatable("Errors", "Disk quota exceeded"),
    translatable("Errors", "File exists"),
    translatable("Errors", "File name too long"),
    translatable("Errors", "File too large"),
    translatable("Errors", "Host is down"),
    translatable("Errors", "Input/output error"),
    translatable("Errors", "Invalid argument"),
    translatable("Errors", "Invalid or incomplete multibyte or wide character"),
    translatable("Errors", "Is a directory"),
    translatable("Errors", "No data available"),
    translatable("Errors", "No medium found"),
    translatable("Errors", "No such device"),
    translatable("Errors", "No such device or address"),
    translatable("Errors", "No such file or directory"),
    translatable("Errors", "Not a directory"),
    translatable("Errors", "Operation not permitted"),
    translatable("Errors", "Permission denied"),
    translatable("Errors", "Read-only file system"),
    translatable("Errors", "Remote I/O error"),
    translatable("Errors", "Resource temporarily unavailable"),
    translatable("Errors", "Stale file handle"),
    translatable("Errors", "Structure needs cleaning"),
    translatable("Errors", "Too many levels of symbolic links"),
    translatable("Errors", "Too many links"),
    translatable("Errors", "Too many open files"),
    translatable("Errors", "Too many open files in system"),
    translatable("Errors", "Transport endpoint is not connected"),
    translatable("Errors", "Value too large for defined data type"),
};

constexpr Reason::Language kEnglish = {[](const std::string& english) { return english; },
                                       TextKit::byteCountText};

// The highest error number of the Linux kernel's own table (EHWPOISON).
constexpr int kHighestErrorNumber = 133;

std::string_view patternOf(Kind kind) {
  return kPatterns[static_cast<std::size_t>(kind)].english;
}

}  // namespace

Reason::Reason(Kind kind, std::vector<Argument> arguments)
    : kind_(kind), arguments_(std::move(arguments)) {
  assert(takes(kind_) == arguments_.size());
}

Reason::Reason(Kind kind, std::vector<Argument> arguments, Reason behind)
    : kind_(kind),
      arguments_(std::move(arguments)),
      behind_(std::make_shared<const Reason>(std::move(behind))) {
  assert(takes(kind_) == arguments_.size() + 1);
}

Reason Reason::ofDrive(int error) {
  const bool known = error > 0 && error <= kHighestErrorNumber;
  switch (known ? error : EIO) {
    case EPERM:
    case EACCES:
      return Reason(Kind::noPermission);
    case EIO:
      return Reason(Kind::writeError);
    case ENXIO:
    case ENODEV:
      return Reason(Kind::disconnected);
    case ENOSPC:
      return Reason(Kind::driveFull);
    default:
      return ofSystem(error);
  }
}

Reason Reason::ofSystem(int error) {
  Reason reason(Kind::ofSystem);
  reason.error_ = error;
  return reason;
}

Reason Reason::fromOutside(std::string sentence) {
  return Reason(Kind::fromOutside, {std::move(sentence)});
}

Reason Reason::about(std::string name, Reason reason) {
  return {Kind::about, {std::move(name)}, std::move(reason)};
}

std::size_t Reason::takes(Kind kind) {
  const std::string_view pattern = patternOf(kind);
  return static_cast<std::size_t>(std::count(pattern.begin(), pattern.end(), '%'));
}

std::string Reason::english() const {
  return in(kEnglish);
}

std::string Reason::in(const Language& language) const {
  if (kind_ == Kind::ofSystem) return language.text(PlatformKit::systemText(error_));
  if (kind_ == Kind::fromOutside) return language.text(std::get<std::string>(arguments_[0]));
  std::array<std::string, 3> values;
  std::size_t count = 0;
  for (const Argument& argument : arguments_) {
    const auto* bytes = std::get_if<Bytes>(&argument);
    values[count++] =
        bytes != nullptr ? language.size(bytes->count) : std::get<std::string>(argument);
  }
  if (behind_) values[count] = behind_->in(language);
  return TextKit::filled(language.text(std::string(patternOf(kind_))),
                         {values[0], values[1], values[2]});
}

}  // namespace DeviceKit
