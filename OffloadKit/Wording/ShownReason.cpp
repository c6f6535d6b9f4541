#include "OffloadKit/Wording/ShownReason.h"

#include "TextKit/Translation.h"

#include <array>
#include <string_view>

namespace OffloadKit {
namespace {

using TextKit::translatable;

// Every sentence that is kept. What ends in ": %1" or ": %2" has another one there.
constexpr std::array kPatterns = {
    // One copy
    translatable("Errors", "Not copied"),
    translatable("Errors", "The copy couldn't be read back"),
    translatable("Errors", "The copy didn't match the original"),
    translatable("Errors", "A link in the destination folder leads to another place"),
    translatable("Errors", "A different file with this name is already in the destination folder"),
    translatable("Errors", "This is the card's own file, not a copy of it"),
    // A drive
    translatable("Errors", "No permission to write here"),
    translatable("Errors", "The drive reported a write error"),
    translatable("Errors", "The drive was disconnected"),
    translatable("Errors", "The drive is full"),
    // The card
    translatable("Errors", "The card couldn't be read: %1"),
    translatable("Errors", "couldn't list its files"),
    translatable("Errors", "Another card is in its place now."),
    translatable("Errors", "%1 changed size while it was being read"),
    translatable("Errors",
                 "%1 read differently the second time. The card or reader may be failing."),
    // The card image
    translatable("Errors", "An image with this name is already there"),
    translatable("Errors", "The card stopped responding"),
    translatable("Errors", "The image couldn't be read back"),
    translatable("Errors", "The image didn't match what was read from the card"),
    // A device
    translatable("Errors", "Could not open %1: %2"),
    translatable("Errors", "Authorization to read %1 was denied."),
    translatable("Errors", "%1 is not a readable file or device."),
    translatable("Errors", "Read failed at offset %1: %2"),
    // Ejecting
    translatable("Errors", "%1 is unmounted and can be taken out, but its drive did not eject it."),
    translatable("Errors",
                 "%1 couldn't be ejected because a program is still using it. Close what uses it, "
                 "then try again."),
    translatable("Errors",
                 "Permission to eject %1 was declined. Unmount it before you take it out."),
    translatable("Errors",
                 "There is no service on this computer that can eject %1. It is still mounted; "
                 "unmount it before you take it out."),
    translatable("Errors",
                 "%1 reported an error while it was unmounted. Try again before you take it out."),
    translatable(
        "Errors",
        "There is no single disk under %1 that could be ejected. If it is mounted, unmount "
        "it before you take it out."),
    translatable("Errors", "%1 is not on a memory card or an external drive. It was not ejected."),
    translatable("Errors", "%1 is not mounted any more, so it was not ejected."),
    translatable("Errors", "The card was not ejected because not everything is verified."),
    translatable("Errors", "The card was not ejected because the result could not be written."),
    // The system's own texts for what file systems and disks answer
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

// A reason, behind the path that it is about if there is one.
std::string shownEnding(const std::string& ending) {
  std::string shown = shownReason(ending);
  const std::size_t colon = ending.rfind(": ");
  if (shown != ending || colon == std::string::npos) return shown;
  return ending.substr(0, colon + 2) + shownReason(ending.substr(colon + 2));
}

}  // namespace

std::string shownReason(const std::string& reason) {
  for (const char* pattern : kPatterns) {
    auto values = TextKit::valuesIn(reason, pattern);
    if (!values) continue;
    const std::string_view text = pattern;
    if (text.ends_with(": %1") || text.ends_with(": %2")) {
      values->back() = shownEnding(values->back());
    }
    values->resize(2);
    return TextKit::filled(TextKit::translate("Errors", pattern), {values->at(0), values->at(1)});
  }
  return reason;
}

}  // namespace OffloadKit
