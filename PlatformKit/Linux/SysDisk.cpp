#include "PlatformKit/Linux/SysDisk.h"

#include "PlatformKit/Linux/BlockDevices.h"

#include <algorithm>
#include <initializer_list>
#include <optional>
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
    for (const Path& ancestor : ancestorsOf(folder)) {
      if (subsystemOf(ancestor) == "mmc") mmcCard_ = ancestor;
    }
  }

  [[nodiscard]] std::string identifier() const {
    // A slash in a device's name is an exclamation mark in sysfs.
    std::string name = folder_.filename().native();
    std::replace(name.begin(), name.end(), '!', '/');
    return name;
  }

  [[nodiscard]] std::string mediaName() const {
    if (mmcCard_) {
      // For what is soldered in, "MMC" would read as a card in a slot.
      const std::string type = mmcAttribute("type");
      return joined({type == "MMC" ? "" : type, mmcAttribute("name")});
    }
    const Path device = folder_ / "device";
    std::string vendor = attributeOf(device, "vendor");
    // Neither is a maker: a bus's number, and what the kernel says for every disk of that kind.
    if (vendor.starts_with("0x") || vendor == "ATA") vendor.clear();
    std::string model = attributeOf(device, "model");
    if (model.empty()) model = attributeOf(connections_.front(), "model");
    return joined({vendor, model});
  }

  [[nodiscard]] bool isDiskImage() const {
    const bool isNetworkBlockDevice = folder_.filename().native().starts_with("nbd");
    return !attributeOf(folder_ / "loop", "backing_file").empty() ||
           (isNetworkBlockDevice && numberOf(folder_, "size") > 0);
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
    return numberOf(folder_, "removable") == 1 || (mmcCard_ && mmcAttribute("type") != "MMC");
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
      if (!std::filesystem::is_symlink(item, error)) continue;
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

  [[nodiscard]] std::string mmcAttribute(const char* name) const {
    std::string value = attributeOf(*mmcCard_, name);
    return value.empty() ? attributeOf(folder_ / "device", name) : value;
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
  std::optional<Path> mmcCard_;
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
