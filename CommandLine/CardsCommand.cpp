#include "CommandLine/CardsCommand.h"

#include "CommandLine/ExitStatus.h"
#include "CommandLine/Output.h"
#include "CommandLine/Table.h"
#include "DeviceKit/VolumeLists.h"
#include "DeviceKit/VolumeSpaces.h"
#include "TextKit/ByteCount.h"
#include "TextKit/Translation.h"
#include "TextKit/Unicode.h"

#include <chrono>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace CommandLine {
namespace {

using namespace std::chrono_literals;
using DeviceKit::Volume;
using PlatformKit::MountedVolume;
using TextKit::translate;

struct Entry {
  Volume row;
  bool isCard;
  bool isDrive;
  bool isSizeKnown;
};

std::vector<Entry> entries(const std::shared_ptr<PlatformKit::MountedVolumes>& volumes) {
  std::vector<MountedVolume> shown = volumes->list();
  std::erase_if(shown, [](const MountedVolume& volume) {
    return !DeviceKit::isCard(volume) && !DeviceKit::isDrive(volume);
  });
  std::vector<PlatformKit::Path> roots;
  roots.reserve(shown.size());
  for (const MountedVolume& volume : shown) roots.push_back(volume.root);
  const auto spaces = DeviceKit::volumeSpaces(volumes, roots, 2s);
  std::vector<Entry> result;
  result.reserve(shown.size());
  for (std::size_t i = 0; i < shown.size(); ++i) {
    const bool isCard = DeviceKit::isCard(shown[i]);
    result.push_back({isCard ? DeviceKit::cardRow(shown[i], spaces[i])
                             : DeviceKit::driveRow(shown[i], spaces[i]),
                      isCard, DeviceKit::isDrive(shown[i]), spaces[i].has_value()});
  }
  return result;
}

std::string kindOf(const Entry& entry) {
  if (!entry.isCard) return translate("Terminal", "drive");
  return entry.isDrive ? translate("Terminal", "card and drive") : translate("Terminal", "card");
}

std::string sizeCell(const Entry& entry, std::int64_t bytes) {
  return entry.isSizeKnown ? TextKit::shownByteCount(static_cast<std::uint64_t>(bytes)) : "?";
}

void printTable(const std::vector<Entry>& entries) {
  if (entries.empty()) {
    print(translate("Terminal",
                    "No card and no drive is mounted. zephrimark disks lists what is connected.") +
          "\n");
    return;
  }
  std::vector<TableRow> rows = {{translate("Terminal", "NAME"), translate("Terminal", "FREE"),
                                 translate("Terminal", "SIZE"), translate("Terminal", "KIND"),
                                 translate("Terminal", "PLACE")}};
  for (const Entry& entry : entries) {
    rows.push_back({nameCell(entry.row.name), sizeCell(entry, entry.row.available),
                    sizeCell(entry, entry.row.capacity), kindOf(entry),
                    TextKit::singleLineText(entry.row.url.native())});
  }
  print(forThisTerminal(tableText(rows, {1, 2})));
}

nlohmann::json jsonOf(const Entry& entry) {
  return {{"type", "volume"},
          {"name", entry.row.name},
          {"path", entry.row.url.native()},
          {"card", entry.isCard},
          {"drive", entry.isDrive},
          {"capacity", entry.row.capacity},
          {"available", entry.row.available}};
}

}  // namespace

int runCards(bool json, const std::shared_ptr<PlatformKit::MountedVolumes>& volumes) {
  const auto found = entries(volumes);
  if (json) {
    for (const Entry& entry : found) printJsonLine(jsonOf(entry));
  } else {
    printTable(found);
  }
  return allVerified;
}

}  // namespace CommandLine
