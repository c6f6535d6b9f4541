#include "CommandLine/DisksCommand.h"

#include "CommandLine/ExitStatus.h"
#include "CommandLine/Output.h"
#include "CommandLine/Table.h"
#include "DeviceKit/DiskEnumerator.h"
#include "TextKit/Translation.h"
#include "TextKit/Unicode.h"

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace CommandLine {
namespace {

using DeviceKit::DiskEnumerator;
using DeviceKit::ExternalDisk;
using PlatformKit::DiskFacts;
using TextKit::translatable;
using TextKit::translate;

std::vector<DiskFacts> disksToShow(bool all, PlatformKit::Disks& disks) {
  std::vector<DiskFacts> shown = disks.list();
  if (!all) {
    std::erase_if(shown,
                  [](const auto& disk) { return !DiskEnumerator::isMemoryCardLike(disk, false); });
  }
  return shown;
}

// In English, for machines; people read the translation.
const char* kindOf(const DiskFacts& disk) {
  if (disk.isDiskImage) return translatable("Terminal", "disk image");
  if (disk.isVirtual) return translatable("Terminal", "virtual");
  if (!DiskEnumerator::isMemoryCardLike(disk, false)) return translatable("Terminal", "internal");
  return DiskEnumerator::externalDisk(disk).isMemoryCard() ? translatable("Terminal", "card")
                                                           : translatable("Terminal", "drive");
}

// The volumes have a place of their own in both outputs.
std::string nameOf(const DiskFacts& disk) {
  return disk.mediaName.empty() ? disk.identifier : disk.mediaName;
}

TableRow rowOf(const DiskFacts& facts) {
  const ExternalDisk disk = DiskEnumerator::externalDisk(facts);
  return {nameCell(nameOf(facts)), facts.volumeNames.empty() ? "–" : nameCell(disk.displayName()),
          disk.sizeDescription(), TextKit::singleLineText(disk.rawDevicePath()),
          translate("Terminal", kindOf(facts))};
}

void printTable(const std::vector<DiskFacts>& disks, bool all) {
  if (disks.empty()) {
    print((all ? translate("Terminal", "No disks were found.")
               : translate("Terminal",
                           "No memory card or external drive is connected. --all shows every "
                           "disk.")) +
          "\n");
    return;
  }
  std::vector<TableRow> rows = {{translate("Terminal", "NAME"), translate("Terminal", "VOLUMES"),
                                 translate("Terminal", "SIZE"), translate("Terminal", "DEVICE"),
                                 translate("Terminal", "KIND")}};
  for (const DiskFacts& disk : disks) rows.push_back(rowOf(disk));
  print(forThisTerminal(tableText(rows, {2})));
}

nlohmann::json jsonOf(const DiskFacts& facts) {
  const ExternalDisk disk = DiskEnumerator::externalDisk(facts);
  return {{"type", "disk"},
          {"name", nameOf(facts)},
          {"volumes", disk.volumeNames},
          {"size", disk.sizeBytes},
          {"device", disk.rawDevicePath()},
          {"kind", kindOf(facts)},
          {"memoryCard", disk.isMemoryCard()},
          {"internal", facts.isInternal},
          {"removable", facts.isRemovableMedia},
          {"system", facts.isSystemDisk},
          {"image", facts.isDiskImage}};
}

}  // namespace

int runDisks(bool all, bool json, PlatformKit::Disks& disks) {
  const auto shown = disksToShow(all, disks);
  if (json) {
    for (const DiskFacts& disk : shown) printJsonLine(jsonOf(disk));
  } else {
    printTable(shown, all);
  }
  return allVerified;
}

}  // namespace CommandLine
