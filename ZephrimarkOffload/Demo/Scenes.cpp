#include "ZephrimarkOffload/Demo/Scenes.h"

#include "ZephrimarkOffload/Demo/Scripts.h"

#include <utility>

namespace ZephrimarkOffload::Demo {
namespace {

using namespace std::chrono_literals;

constexpr std::uint64_t kGB = 1'000'000'000;

const ScriptedCard kCinema{"/media/kim/A001", "A001", "Canon", {1204, 64'207'000'000}, 128 * kGB};
const ScriptedCard kDrone{"/media/kim/DRONE", "DRONE", "DJI", {86, 21'480'000'000}, 64 * kGB};
const ScriptedDrive kShuttle{"/media/kim/Shuttle 1", "Shuttle 1", 2000 * kGB, 1620 * kGB};
const ScriptedDrive kBackup{"/media/kim/Backup", "Backup", 4000 * kGB, 2875 * kGB};
const ScriptedDrive kArchive{"/media/kim/Archive", "Archive", 8000 * kGB, 640 * kGB};

Scene emptySetup() {
  return {};
}

Scene readySetup() {
  Scene scene;
  scene.cards = {kCinema, kDrone};
  scene.drives = {kShuttle, kBackup, kArchive};
  scene.choices.destinations = {kShuttle.root, kBackup.root};
  scene.source = kCinema.root;
  return scene;
}

Scene blockedSetup() {
  Scene scene = readySetup();
  scene.drives.back().available = 20 * kGB;
  scene.choices.destinations = {kShuttle.root, kArchive.root};
  scene.choices.saveCardImage = true;
  return scene;
}

Scene customSetup() {
  Scene scene = readySetup();
  scene.choices.preset.templateText = "{project}/{date}_{camera}/{card}";
  scene.choices.project = "Harbour Film";
  return scene;
}

Scene longNames() {
  Scene scene = readySetup();
  scene.cards = {kCinema};
  scene.cards.front().name =
      "Second Unit B-Camera Magazine 14 with the night exteriors of the harbour and the ferry";
  scene.drives = {kShuttle, kBackup};
  scene.drives.front().name =
      "Production Shuttle Drive Number One for the Post House in Rotterdam, "
      "to be returned by Friday";
  scene.choices.destinations = {kShuttle.root / "Productions" / "2026 Harbour Film" /
                                    "Second Unit" / "Camera Originals" /
                                    "Week 41 Night Shoots and Pickups",
                                kBackup.root};
  scene.choices.preset.templateText = "{project}/{date}/{card}";
  scene.choices.project = "Harbour Film, the director's cut with all of the alternative endings";
  return scene;
}

Scene offloading() {
  Scene scene = readySetup();
  scene.shows = Running{};
  scene.script = heldAt(0.37);
  scene.elapsed = 130s;
  return scene;
}

Scene stopQuestion() {
  Scene scene = offloading();
  scene.dialog = "stopQuestion";
  return scene;
}

Scene endedBy(Script script) {
  Scene scene = readySetup();
  scene.shows = Done{};
  scene.script = std::move(script);
  return scene;
}

Scene doneFailed() {
  Scene scene = endedBy(
      endedAs([](const auto& plan, const Files& files) { return disconnected(plan, files, 45); }));
  scene.choices.destinations.push_back(kArchive.root);
  return scene;
}

Scene doneWithImage() {
  Scene scene = endedBy(endedAs(withCardImage));
  scene.choices.saveCardImage = true;
  return scene;
}

Scene failedToStart() {
  Scene scene = endedBy(refused(
      OffloadKit::OffloadError::notEnoughSpace("Backup (A001)", 64'307'000'000, 51'200'000'000)));
  scene.shows = Failed{};
  return scene;
}

Scene aboutDialog() {
  Scene scene = readySetup();
  scene.dialog = "about";
  return scene;
}

using NamedScene = std::pair<std::string, Scene>;

std::vector<NamedScene> allScenes() {
  return {
      {"setup-empty", emptySetup()},     {"setup-ready", readySetup()},
      {"setup-blocked", blockedSetup()}, {"setup-custom", customSetup()},
      {"setup-long-names", longNames()}, {"running", offloading()},
      {"stop-question", stopQuestion()}, {"done", endedBy(endedAs(verified))},
      {"done-failed", doneFailed()},     {"done-unreadable", endedBy(endedAs(partlyUnreadable))},
      {"done-image", doneWithImage()},   {"failed", failedToStart()},
      {"about", aboutDialog()}};
}

}  // namespace

std::vector<std::string> sceneNames() {
  std::vector<std::string> names;
  for (const NamedScene& scene : allScenes()) names.push_back(scene.first);
  return names;
}

std::optional<Scene> sceneNamed(const std::string& name) {
  for (const NamedScene& scene : allScenes()) {
    if (scene.first == name) return scene.second;
  }
  return std::nullopt;
}

Scene interactiveScene() {
  Scene scene = readySetup();
  scene.source.clear();
  scene.choices.destinations.clear();
  scene.script = wholeRun(19s, verified);
  scene.isFrozen = false;
  return scene;
}

}  // namespace ZephrimarkOffload::Demo
