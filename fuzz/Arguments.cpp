#include "CommandLine/OffloadArguments.h"
#include "PlatformKit/Linux/LinuxFileSystem.h"
#include "PlatformKit/Linux/LinuxVolumes.h"
#include "PlatformKit/Testing/FakeDisks.h"
#include "PlatformKit/Testing/ManualClock.h"
#include "PlatformKit/Testing/TempFolder.h"
#include "TextKit/Unicode.h"
#include "fuzz/Input.h"

#include <filesystem>
#include <set>
#include <string>

namespace {

/// The folder that paths without a "/" in front are in: a card, a drive, a file and a link.
class Place {
 public:
  Place() {
    PlatformKit::Testing::writeFile(folder_.path() / "card/DCIM/100CANON/IMG_1.CR3", "x");
    PlatformKit::Testing::writeFile(folder_.path() / "file", "x");
    std::filesystem::create_directory(folder_.path() / "drive");
    std::filesystem::create_directory_symlink("drive", folder_.path() / "link");
    std::filesystem::create_directory_symlink("loop", folder_.path() / "loop");
    std::filesystem::current_path(folder_.path());
  }

 private:
  const PlatformKit::Testing::TempFolder folder_;
};

void checkSentence(const std::string& sentence) {
  Fuzz::require(sentence.ends_with('.'), "an error is a sentence");
  Fuzz::require(TextKit::singleLineText(sentence) == sentence, "an error fits on a line");
}

void checkPlan(const OffloadKit::OffloadPlan& plan, std::size_t destinations) {
  Fuzz::require(plan.source.is_absolute() && plan.source == plan.source.lexically_normal(),
                "the source is told without detours");
  Fuzz::require(!plan.sourceName.empty(), "the source has a name");
  Fuzz::require(plan.destinations.size() == destinations && destinations <= 3,
                "every destination is there");
  std::set<PlatformKit::Path> different;
  for (const PlatformKit::Path& destination : plan.destinations) {
    Fuzz::require(destination.is_absolute() && destination == destination.lexically_normal(),
                  "a destination is told without detours");
    Fuzz::require(different.insert(destination).second, "no destination is there twice");
  }
}

}  // namespace

/// Input: template, project, source and destinations, with zero bytes between.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Place place;
  auto parts = Fuzz::partsOf(Fuzz::textOf(data, size), 7);
  parts.resize(std::max<std::size_t>(parts.size(), 4));
  CommandLine::OffloadArguments arguments;
  arguments.folderTemplate = parts[0];
  arguments.project = parts[1];
  arguments.source = parts[2];
  arguments.destinations.assign(parts.begin() + 3, parts.end());

  PlatformKit::LinuxFileSystem fileSystem;
  PlatformKit::LinuxVolumes volumes;
  const PlatformKit::Testing::ManualClock clock(PlatformKit::Date{});
  PlatformKit::Testing::FakeDisks disks;
  try {
    checkPlan(CommandLine::planFor(arguments, {fileSystem, volumes, clock},
                                   DeviceKit::DiskEnumerator(disks, nullptr)),
              arguments.destinations.size());
  } catch (const CommandLine::ArgumentError& error) {
    checkSentence(error.what());
  } catch (const CommandLine::SourceError& error) {
    checkSentence(error.what());
  }
  return 0;
}
