#pragma once

#include "TextKit/Translation.h"

namespace ZephrimarkOffload {

/// The words that name the platform, everything else in the texts being the same everywhere. They
/// are English, of the context "Platform".
struct PlatformWords {
  const char* thisComputer;      ///< the name of a destination on the computer's own disk
  const char* onlyThisComputer;  ///< the warning that all copies are there
  const char* showInFileBrowser;
  const char* imagesCard;  ///< what a card image is for, and that a password may be asked for
};

inline constexpr PlatformWords kMacWords{
    TextKit::translatable("Platform", "This Mac"),
    TextKit::translatable("Platform",
                          "Every copy is on this Mac's own disk. Add an external drive so the "
                          "footage isn't on one disk only."),
    TextKit::translatable("Platform", "Show in Finder"),
    TextKit::translatable(
        "Platform",
        "A sector-by-sector copy of the whole card, including deleted space. If something turns "
        "out to be missing later, Zephrimark Kestrine can search the image, even after the card "
        "is reused. macOS asks for your password to read the card directly.")};

inline constexpr PlatformWords kLinuxWords{
    TextKit::translatable("Platform", "This Computer"),
    TextKit::translatable("Platform",
                          "Every copy is on this computer's own disk. Add an external drive so "
                          "the footage isn't on one disk only."),
    TextKit::translatable("Platform", "Show in Files"),
    TextKit::translatable(
        "Platform",
        "A sector-by-sector copy of the whole card, including deleted space. If something turns "
        "out to be missing later, Zephrimark Kestrine can search the image, even after the card "
        "is reused. Your password may be asked for to read the card directly.")};

/// Those of the platform that this is built for.
inline constexpr PlatformWords kWords =
#ifdef __APPLE__
    kMacWords;
#else
    kLinuxWords;
#endif

}  // namespace ZephrimarkOffload
