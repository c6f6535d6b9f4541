#include "CommandLine/OffloadArguments.h"

#include "DeviceKit/Places.h"
#include "OffloadKit/Card/CameraName.h"
#include "OffloadKit/Records/FolderPreset.h"
#include "OffloadKit/Records/PlanRequest.h"
#include "OffloadKit/Wording/ShownReason.h"
#include "PlatformKit/Paths.h"
#include "TextKit/Translation.h"
#include "TextKit/Unicode.h"

#include <algorithm>

namespace CommandLine {
namespace {

using PlatformKit::Path;
using TextKit::filled;
using TextKit::singleLineText;
using TextKit::translate;

// Absolute and without links, also where the last components do not exist yet: then two ways of
// writing one folder are one path. ".." is taken as the kernel does, behind links.
Path absolutePath(PlatformKit::FileSystem& fileSystem, const std::string& typed) {
  Path path = std::filesystem::absolute(typed);
  while (!path.has_filename() && path.has_relative_path()) path = path.parent_path();
  const Path existing = PlatformKit::nearestExisting(fileSystem, path);
  const auto resolved = fileSystem.resolve(existing);
  if (!resolved.ok()) return path.lexically_normal();
  Path rest;
  for (auto part = std::next(path.begin(), std::distance(existing.begin(), existing.end()));
       part != path.end(); ++part) {
    rest /= *part;
  }
  const Path whole = rest.empty() ? resolved.value() : (resolved.value() / rest).lexically_normal();
  return whole.has_filename() || !whole.has_relative_path() ? whole : whole.parent_path();
}

Path sourcePath(PlatformKit::FileSystem& fileSystem, const std::string& typed) {
  if (typed.empty()) {
    throw ArgumentError(translate("Terminal", "The source is empty. Name a card or folder."));
  }
  const auto resolved = fileSystem.resolve(typed);
  if (!resolved.ok()) {
    throw SourceError(filled(translate("Terminal", "There is no card or folder at \"%1\": %2."),
                             {singleLineText(typed),
                              OffloadKit::shown(OffloadKit::Reason::ofSystem(resolved.error()))}));
  }
  const auto status = fileSystem.status(resolved.value());
  if (status.ok() && status.value().kind != PlatformKit::ItemKind::folder) {
    throw SourceError(
        filled(translate("Terminal", "\"%1\" is a file. Name the card or folder that holds it."),
               {singleLineText(typed)}));
  }
  return resolved.value();
}

std::string sourceName(PlatformKit::System system, const Path& source) {
  const std::string name = DeviceKit::sourceName(system, source);
  return name.empty() ? "Card" : name;
}

std::uint64_t freeSpace(PlatformKit::System system, const Path& destination) {
  return DeviceKit::freeSpace(system, PlatformKit::nearestExisting(system.fileSystem, destination));
}

OffloadKit::PlanRequest::CardDisk cardDisk(PlatformKit::System system,
                                           const DeviceKit::DiskEnumerator& disks,
                                           const Path& source) {
  if (!DeviceKit::isVolumeRoot(system, source)) {
    throw ArgumentError(
        filled(translate("Terminal",
                         "\"%1\" is a folder, not a whole card. A card image needs a card as the "
                         "source."),
               {singleLineText(source.native())}));
  }
  const auto disk = disks.wholeDisk(source);
  if (!disk) {
    throw ArgumentError(
        filled(translate("Terminal",
                         "There is no single disk behind \"%1\" that a card image could be made "
                         "of."),
               {singleLineText(source.native())}));
  }
  return {disk->rawPath, disk->size};
}

std::vector<Path> destinationFolders(PlatformKit::FileSystem& fileSystem,
                                     const std::vector<std::string>& typed) {
  if (typed.size() > 3) {
    throw ArgumentError(translate("Terminal", "At most three destinations can be given."));
  }
  std::vector<Path> folders;
  for (const std::string& destination : typed) {
    if (destination.empty()) {
      throw ArgumentError(translate("Terminal", "A destination is empty. Name a folder."));
    }
    const Path folder = absolutePath(fileSystem, destination);
    const Path existing = PlatformKit::nearestExisting(fileSystem, folder);
    const auto status = fileSystem.status(existing);
    if (status.ok() && !isFolder(fileSystem, existing)) {
      throw ArgumentError(
          filled(translate("Terminal", "\"%1\" is a file. Name a folder to copy to."),
                 {singleLineText(existing == folder ? destination : existing.native())}));
    }
    if (std::find(folders.begin(), folders.end(), folder) != folders.end()) {
      throw ArgumentError(
          filled(translate("Terminal",
                           "The destination \"%1\" is given twice. Two copies on one folder would "
                           "be one copy."),
                 {singleLineText(destination)}));
    }
    folders.push_back(folder);
  }
  return folders;
}

}  // namespace

OffloadKit::OffloadPlan planFor(const OffloadArguments& arguments, PlatformKit::System system,
                                const DeviceKit::DiskEnumerator& disks) {
  OffloadKit::PlanRequest request;
  // Before the card is looked at, which can take its time.
  for (const Path& folder : destinationFolders(system.fileSystem, arguments.destinations)) {
    request.destinations.push_back({{folder, PlatformKit::volumeOf(system.fileSystem, folder)}});
  }
  request.source = sourcePath(system.fileSystem, arguments.source);
  request.sourceName = sourceName(system, request.source);
  request.camera = OffloadKit::cameraName(system.fileSystem, request.source);
  request.preset = {arguments.folderTemplate};
  request.project = arguments.project;
  request.algorithm = arguments.checksum;
  request.verifySource = !arguments.readOnce;
  request.now = system.clock.now();
  if (arguments.cardImage) {
    request.imageOf = cardDisk(system, disks, request.source);
    const std::string below = folderName(request);
    for (auto& destination : request.destinations) {
      destination.freeSpace = freeSpace(system, destination.place.folder / below);
    }
  }
  return OffloadKit::planFor(request);
}

}  // namespace CommandLine
