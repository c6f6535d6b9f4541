#pragma once

#include <string_view>

namespace ZephrimarkOffload {

/// The words that name the platform, everything else in the texts being the same everywhere.
struct PlatformWords {
  std::string_view thisComputer;      ///< the name of a destination on the computer's own disk
  std::string_view onlyThisComputer;  ///< the warning that all copies are there
  std::string_view showInFileBrowser;
  std::string_view asksForPassword;  ///< the last sentence about the card image
};

inline constexpr PlatformWords kMacWords{
    "This Mac",
    "Every copy is on this Mac's own disk. Add an external drive so the footage isn't on one disk "
    "only.",
    "Show in Finder", "macOS asks for your password to read the card directly."};

inline constexpr PlatformWords kLinuxWords{
    "This Computer",
    "Every copy is on this computer's own disk. Add an external drive so the footage isn't on one "
    "disk only.",
    "Show in Files", "Your password may be asked for to read the card directly."};

/// Those of the platform that this is built for.
inline constexpr PlatformWords kWords =
#ifdef __APPLE__
    kMacWords;
#else
    kLinuxWords;
#endif

}  // namespace ZephrimarkOffload
