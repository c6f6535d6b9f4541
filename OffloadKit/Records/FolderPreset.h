#pragma once

#include "PlatformKit/Dates.h"
#include "TextKit/DateText.h"

#include <array>
#include <span>
#include <string>
#include <string_view>

namespace OffloadKit {

/// A template for the folder that an offload lands in on every drive, such as "{date}/{card}".
struct FolderPreset {
  /// The facts of one offload that a template can name.
  struct Context {
    PlatformKit::Date date{};
    std::string card;     ///< the card's name
    std::string camera;   ///< the camera brand
    std::string project;  ///< as the user typed it; may be empty
  };

  struct Token {
    std::string_view token;
    const char* meaning;  ///< in English, of the context "Setup"
    std::string (*value)(const Context&);
  };

  std::string templateText;

  /// The ready-made presets, in the order in which they are offered.
  static const std::array<FolderPreset, 4>& presets();

  /// The tokens that a template may hold, with a line of help each, in the order of the help.
  static std::span<const Token> tokens();

  /// The relative folder path for one offload: components separated by "/", never empty, no "/" at
  /// either end, no component that could climb out of the destination. Never fails. Any thread.
  [[nodiscard]] std::string resolve(const Context& context) const;

  /// The text made safe as one component of a path: each of / \ : * ? " < > |, every control
  /// character and every byte that is not UTF-8 becomes "-"; spaces, tabs and dots go from both
  /// ends. May be empty. Any thread.
  static std::string clean(std::string_view text);

  friend bool operator==(const FolderPreset&, const FolderPreset&) = default;
};

}  // namespace OffloadKit
