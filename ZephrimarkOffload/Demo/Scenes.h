#pragma once

#include "ZephrimarkOffload/Demo/ScriptedDisks.h"
#include "ZephrimarkOffload/Demo/ScriptedRunner.h"
#include "ZephrimarkOffload/Model/Choices.h"
#include "ZephrimarkOffload/Model/Stage.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace ZephrimarkOffload::Demo {

/// What the window shows, and how it gets there.
struct Scene {
  std::vector<ScriptedCard> cards;
  std::vector<ScriptedDrive> drives;
  Choices choices;
  PlatformKit::Path source;  ///< empty when none is chosen
  /// Which stage it is about, whatever that carries. The offload is started for a later one than
  /// the choosing.
  Stage shows = Choosing{};
  Script script;
  /// How long the offload seems to run already.
  std::chrono::seconds elapsed{0};
  /// The object name of the dialog that is open; empty without one.
  std::string dialog;
  /// Whether the clock stands still, so that every picture is the same.
  bool isFrozen = true;
};

/// The names of all scenes, in the order of the work.
std::vector<std::string> sceneNames();

/// None when there is no scene of this name.
std::optional<Scene> sceneNamed(const std::string& name);

/// Two cards, three drives and an offload that takes about 20 seconds.
Scene interactiveScene();

}  // namespace ZephrimarkOffload::Demo
