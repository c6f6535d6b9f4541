#pragma once

#include "ZephrimarkOffload/Demo/Scenes.h"

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <QSize>
#include <QString>

namespace ZephrimarkOffload::Demo {

/// What the demonstration is asked to show.
struct DemoArguments {
  /// Arguments that make no sense; its text says which, for people.
  class Error final : public std::runtime_error {
   public:
    using std::runtime_error::runtime_error;
  };

  Scene scene = interactiveScene();
  std::optional<bool> dark;
  std::optional<QString> screenshot;  ///< the file to save a picture in
  std::optional<QSize> size;          ///< of the window in the picture
  std::string language = "en";
  bool wantsHelp = false;

  /// `arguments`: without the program's name. Throws Error.
  static DemoArguments parse(const std::vector<std::string>& arguments);

  static std::string help();
};

}  // namespace ZephrimarkOffload::Demo
