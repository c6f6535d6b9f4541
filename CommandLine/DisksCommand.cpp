#include "CommandLine/DisksCommand.h"

#include "CommandLine/ExitStatus.h"
#include "CommandLine/Output.h"
#include "DeviceKit/DiskEnumerator.h"
#include "PlatformKit/Unicode.h"

#include <algorithm>
#include <array>
#include <string>
#include <tuple>
#include <vector>

#include <nlohmann/json.hpp>

namespace CommandLine {
namespace {

using DeviceKit::DiskEnumerator;
using DeviceKit::ExternalDisk;
using PlatformKit::DiskFacts;

using Row = std::array<std::string, 5>;
constexpr std::size_t kSizeColumn = 2;
constexpr std::size_t kLongestCell = 40;

std::vector<DiskFacts> disksToShow(bool all, PlatformKit::Disks& disks) {
  std::vector<DiskFacts> shown = disks.list();
  if (!all) {
    std::erase_if(shown,
                  [](const auto& disk) { return !DiskEnumerator::isMemoryCardLike(disk, false); });
  }
  return shown;
}

const char* kindOf(const DiskFacts& disk) {
  if (disk.isDiskImage) return "disk image";
  if (disk.isVirtual) return "virtual";
  if (!DiskEnumerator::isMemoryCardLike(disk, false)) return "internal";
  return DiskEnumerator::externalDisk(disk).isMemoryCard() ? "card" : "drive";
}

// The volumes have a place of their own in both outputs.
std::string nameOf(const DiskFacts& disk) {
  return disk.mediaName.empty() ? disk.identifier : disk.mediaName;
}

std::string cell(const std::string& text) {
  return PlatformKit::elidedInTheMiddle(PlatformKit::singleLineText(text), kLongestCell);
}

Row rowOf(const DiskFacts& facts) {
  const ExternalDisk disk = DiskEnumerator::externalDisk(facts);
  return {cell(nameOf(facts)), facts.volumeNames.empty() ? "–" : cell(disk.displayName()),
          disk.sizeDescription(), PlatformKit::singleLineText(disk.rawDevicePath()), kindOf(facts)};
}

std::string tableText(const std::vector<Row>& rows) {
  std::array<std::size_t, std::tuple_size_v<Row>> widths{};
  for (const Row& row : rows) {
    for (std::size_t i = 0; i < row.size(); ++i) {
      widths[i] = std::max(widths[i], PlatformKit::cellWidth(row[i]));
    }
  }
  std::string text;
  for (const Row& row : rows) {
    for (std::size_t i = 0; i + 1 < row.size(); ++i) {
      const std::string filling(widths[i] - PlatformKit::cellWidth(row[i]), ' ');
      text += (i == kSizeColumn ? filling + row[i] : row[i] + filling) + "  ";
    }
    text += row.back() + "\n";
  }
  return text;
}

void printTable(const std::vector<DiskFacts>& disks, bool all) {
  if (disks.empty()) {
    print(all ? "No disks were found.\n"
              : "No memory card or external drive is connected. --all shows every disk.\n");
    return;
  }
  std::vector<Row> rows = {{"NAME", "VOLUMES", "SIZE", "DEVICE", "KIND"}};
  for (const DiskFacts& disk : disks) rows.push_back(rowOf(disk));
  print(forThisTerminal(tableText(rows)));
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
