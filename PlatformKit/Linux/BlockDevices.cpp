#include "PlatformKit/Linux/BlockDevices.h"

#include "PlatformKit/Linux/MountTable.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <fstream>
#include <optional>
#include <set>
#include <string_view>
#include <system_error>
#include <tuple>

namespace PlatformKit {
namespace {

// The links are relative, so that this stays inside the tree it starts in.
std::optional<Path> withoutLinks(const Path& path) {
  std::error_code error;
  Path result = std::filesystem::canonical(path, error);
  if (error) return std::nullopt;
  return result;
}

std::vector<Path> slavesOf(const Path& folder) {
  std::vector<Path> slaves;
  for (const Path& link : itemsOf(folder / "slaves")) {
    if (auto slave = withoutLinks(link)) slaves.push_back(std::move(*slave));
  }
  return slaves;
}

}  // namespace

std::vector<Path> itemsOf(const Path& folder) {
  std::vector<Path> items;
  std::error_code error;
  for (std::filesystem::directory_iterator it(folder, error), end; !error && it != end;
       it.increment(error)) {
    items.push_back(it->path());
  }
  return items;
}

std::string attributeOf(const Path& folder, const char* name) {
  constexpr std::string_view kSpace = " \t\r\n";
  std::ifstream stream(folder / name, std::ios::binary);
  std::string line;
  std::getline(stream, line);
  line.erase(line.find_last_not_of(kSpace) + 1);
  line.erase(0, line.find_first_not_of(kSpace));
  return line;
}

std::uint64_t numberOf(const Path& folder, const char* name) {
  const std::string text = attributeOf(folder, name);
  std::uint64_t number = 0;
  const auto end = text.data() + text.size();
  const auto read = std::from_chars(text.data(), end, number);
  return read.ec == std::errc{} && read.ptr == end ? number : 0;
}

bool hasNoMedium(const BlockDevice& device) {
  // These show it by their names only.
  constexpr std::array<std::string_view, 4> kKinds = {"dm-", "md", "ram", "zram"};
  const std::string name = device.folder.filename().native();
  return std::any_of(kKinds.begin(), kKinds.end(),
                     [&](std::string_view kind) { return name.starts_with(kind); });
}

BlockDevices::BlockDevices(const Path& sys) {
  for (const Path& link : itemsOf(sys / "dev" / "block")) {
    const auto number = parseDeviceNumber(link.filename().native());
    const auto folder = withoutLinks(link);
    if (!number || !folder) continue;
    devices_.push_back({*folder, *number, numberOf(*folder, "partition"), slavesOf(*folder)});
  }
  std::sort(devices_.begin(), devices_.end(), [](const auto& a, const auto& b) {
    return std::tie(a.number.major, a.number.minor) < std::tie(b.number.major, b.number.minor);
  });
}

const BlockDevice* BlockDevices::find(DeviceNumber number) const {
  const auto found = std::find_if(devices_.begin(), devices_.end(),
                                  [&](const auto& device) { return device.number == number; });
  return found == devices_.end() ? nullptr : &*found;
}

const BlockDevice* BlockDevices::find(const Path& folder) const {
  const auto found = std::find_if(devices_.begin(), devices_.end(),
                                  [&](const auto& device) { return device.folder == folder; });
  return found == devices_.end() ? nullptr : &*found;
}

bool BlockDevices::isWhole(const BlockDevice& device) const {
  // The boot areas of soldered cards are not partitions, but lie in the folder of the whole, too.
  return device.partition == 0 && find(device.folder.parent_path()) == nullptr;
}

std::vector<const BlockDevice*> BlockDevices::bearersOf(const BlockDevice& device) const {
  std::vector<const BlockDevice*> bearers;
  std::vector<const BlockDevice*> pending = {&device};
  std::set<const BlockDevice*> seen;
  while (!pending.empty()) {
    const BlockDevice* next = pending.back();
    pending.pop_back();
    if (next == nullptr || !seen.insert(next).second) continue;
    if (!isWhole(*next)) {
      pending.push_back(find(next->folder.parent_path()));
    } else if (next->slaves.empty()) {
      bearers.push_back(next);
    } else {
      for (const Path& slave : next->slaves) pending.push_back(find(slave));
    }
  }
  return bearers;
}

std::vector<const BlockDevice*> BlockDevices::on(const BlockDevice& device) const {
  std::vector<const BlockDevice*> parts;
  std::vector<const BlockDevice*> made;
  for (const BlockDevice& other : devices_) {
    if (other.folder.parent_path() == device.folder) parts.push_back(&other);
    const auto& slaves = other.slaves;
    if (std::find(slaves.begin(), slaves.end(), device.folder) != slaves.end()) {
      made.push_back(&other);
    }
  }
  std::stable_sort(parts.begin(), parts.end(),
                   [](const auto* a, const auto* b) { return a->partition < b->partition; });
  parts.insert(parts.end(), made.begin(), made.end());
  return parts;
}

}  // namespace PlatformKit
