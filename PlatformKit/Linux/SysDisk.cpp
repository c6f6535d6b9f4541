#include "PlatformKit/Linux/SysDisk.h"

#include "PlatformKit/Linux/BlockDevices.h"

#include <algorithm>
#include <initializer_list>
#include <sstream>
#include <system_error>

namespace PlatformKit {
namespace {

constexpr std::uint64_t kSectorSize = 512;  // in sysfs, whatever the device's own blocks are

std::string subsystemOf(const Path& folder) {
  std::error_code error;
  return std::filesystem::read_symlink(folder / "subsystem", error).filename().native();
}

/// A whole disk and how it is connected.
class SysDisk {
 public:
  SysDisk(const Path& sys, const Path& folder) : folder_(folder) {
    std::error_code error;
    devices_ = std::filesystem::canonical(sys, error) / "devices";
    const Path subsystem = folder.parent_path();
    if (subsystemOf(subsystem) == "nvme-subsystem") connections_ = controllersOf(subsystem);
    if (connections_.empty()) connections_ = {folder};
    const auto ancestors = ancestorsOf(folder);
    isMmc_ = std::any_of(ancestors.begin(), ancestors.end(),
                         [](const Path& ancestor) { return subsystemOf(ancestor) == "mmc"; });
  }

  [[nodiscard]] std::string identifier() const {
    // A slash in a device's name is an exclamation mark in sysfs.
    std::string name = folder_.filename().native();
    std::replace(name.begin(), name.end(), '!', '/');
    return name;
  }

  [[nodiscard]] std::string mediaName() const {
    const Path device = folder_ / "device";
    if (isMmc_) {
      // For what is soldered in, "MMC" would read as a card in a slot.
      const std::string type = attributeOf(device, "type");
      return joined({type == "MMC" ? "" : type, attributeOf(device, "name")});
    }
    std::string vendor = attributeOf(device, "vendor");
    // Neither is a maker: a bus's number, and what the kernel says for every disk of that kind.
    if (vendor.starts_with("0x") || vendor == "ATA") vendor.clear();
    std::string model = attributeOf(device, "model");
    if (model.empty()) model = attributeOf(connections_.front(), "model");
    return joined({vendor, model});
  }

  [[nodiscard]] bool isDiskImage() const {
    return !attributeOf(folder_ / "loop", "backing_file").empty() ||
           folder_.filename().native().starts_with("nbd");
  }

  [[nodiscard]] bool isVirtual() const {
    const std::string virtualDevices = (devices_ / "virtual").native() + "/";
    return !isDiskImage() &&
           std::all_of(connections_.begin(), connections_.end(), [&](const Path& connection) {
             return connection.native().starts_with(virtualDevices);
           });
  }

  [[nodiscard]] bool isRemovableMedia() const {
    // Slots for cards do not set the attribute.
    return numberOf(folder_, "removable") == 1 ||
           (isMmc_ && attributeOf(folder_ / "device", "type") != "MMC");
  }

  [[nodiscard]] bool isHotPluggable() const {
    return std::any_of(connections_.begin(), connections_.end(), [&](const Path& connection) {
      const auto ancestors = ancestorsOf(connection);
      return std::any_of(ancestors.begin(), ancestors.end(), canBeUnplugged);
    });
  }

 private:
  // NVMe disks that can be reached in several ways belong to a subsystem, which links to the
  // controllers; only these have a place on a bus.
  [[nodiscard]] static std::vector<Path> controllersOf(const Path& subsystem) {
    std::vector<Path> controllers;
    for (const Path& item : itemsOf(subsystem)) {
      std::error_code error;
      Path controller = std::filesystem::canonical(item, error);
      if (!error && subsystemOf(controller) == "nvme") controllers.push_back(std::move(controller));
    }
    return controllers;
  }

  [[nodiscard]] std::vector<Path> ancestorsOf(const Path& folder) const {
    std::vector<Path> ancestors;
    for (Path at = folder.parent_path(); at != devices_ && at.has_relative_path();
         at = at.parent_path()) {
      ancestors.push_back(at);
    }
    return ancestors;
  }

  static bool canBeUnplugged(const Path& ancestor) {
    const std::string subsystem = subsystemOf(ancestor);
    if (subsystem == "firewire") return true;
    if (subsystem == "pci") return attributeOf(ancestor, "removable") == "removable";
    if (subsystem != "usb") return false;
    // The bus itself (usb2) and the interfaces (2-1:1.0) say nothing about a plug.
    const std::string name = ancestor.filename().native();
    return !name.starts_with("usb") && name.find(':') == std::string::npos &&
           attributeOf(ancestor, "removable") != "fixed";
  }

  // Makers fill their fields up with spaces.
  static std::string joined(std::initializer_list<std::string> parts) {
    std::string result;
    for (const std::string& part : parts) {
      std::istringstream words(part);
      for (std::string word; words >> word;) result += (result.empty() ? "" : " ") + word;
    }
    return result;
  }

  Path folder_;
  Path devices_;
  std::vector<Path> connections_;  // never empty
  bool isMmc_ = false;
};

}  // namespace

DiskFacts sysDiskFacts(const Path& sys, const Path& folder) {
  const SysDisk disk(sys, folder);
  DiskFacts facts;
  facts.identifier = disk.identifier();
  facts.mediaName = disk.mediaName();
  facts.sizeBytes = numberOf(folder, "size") * kSectorSize;
  facts.isDiskImage = disk.isDiskImage();
  facts.isVirtual = disk.isVirtual();
  facts.isRemovableMedia = disk.isRemovableMedia();
  facts.isHotPluggable = disk.isHotPluggable();
  facts.isInternal = !facts.isHotPluggable && !facts.isDiskImage && !facts.isVirtual;
  facts.isEjectable = facts.isRemovableMedia || facts.isHotPluggable;
  return facts;
}

}  // namespace PlatformKit
