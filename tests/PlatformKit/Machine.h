#pragma once

#include "PlatformKit/FileSystem.h"
#include "PlatformKit/Testing/TempFolder.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace PlatformKit::Testing {

using Attributes = std::map<std::string, std::string>;

/// What a line of the list of mounts says beside device and place; escaped as the kernel does.
struct MountDetails {
  std::string fileSystem = "ext4";
  std::string source = "none";
  std::string root = "/";
  std::string options = "rw";
  std::string volumeOptions = "rw";
};

/// A machine made of files: what the kernel and udev would tell of its devices and mounts. Devices
/// are paths below `devices_`.
class Machine : public ::testing::Test {
 protected:
  // A step on the way to a device: "usb2:usb" is a folder and its subsystem; what follows another
  // colon is its attribute `removable`. An interface's own colon is written "=".
  std::string way(const std::vector<std::string>& steps) {
    Path folder;
    for (const std::string& step : steps) {
      const auto first = step.find(':');
      std::string name = step.substr(0, first);
      std::replace(name.begin(), name.end(), '=', ':');
      folder /= name;
      if (first == std::string::npos) continue;
      const auto second = step.find(':', first + 1);
      setSubsystem(folder, step.substr(first + 1, second - first - 1));
      if (second != std::string::npos) set(folder, {{"removable", step.substr(second + 1)}});
    }
    return folder;
  }

  std::string usb(const std::string& port, const std::string& removable) {
    return way({"pci0000=00", "0000=00=14.0:pci:fixed", "usb2:usb:unknown",
                port + ":usb:" + removable, port + "=1.0:usb", "host6:scsi", "6=0=0=0:scsi"}) +
           "/block/";
  }

  void set(const Path& device, const Attributes& attributes) {
    for (const auto& [name, value] : attributes) {
      writeFile(devices_ / device / name, value + "\n");
    }
  }

  void setSubsystem(const Path& device, const std::string& name) {
    link(sys_ / "class" / name, devices_ / device / "subsystem");
  }

  // Eight sectors each, if nothing else is said.
  void add(const Path& device, const std::string& numbers, const Attributes& attributes = {}) {
    set(device, {{"size", "8"}, {"removable", "0"}});
    set(device, attributes);
    setSubsystem(device, "block");
    link(devices_ / device, sys_ / "dev/block" / numbers);
  }

  void addPartition(const Path& device, const std::string& numbers, const std::string& number) {
    set(device, {{"size", "4"}, {"partition", number}});
    link(devices_ / device, sys_ / "dev/block" / numbers);
  }

  void addMade(const std::string& name, const std::string& numbers,
               const std::vector<std::string>& parts) {
    add("virtual/block/" + name, numbers);
    for (const auto& part : parts) {
      link(devices_ / part, devices_ / "virtual/block" / name / "slaves" / Path(part).filename());
    }
  }

  void mount(const std::string& numbers, const std::string& point,
             const MountDetails& details = {}) {
    mounts_ += "1 0 " + numbers + " " + details.root + " " + point + " " + details.options + " - " +
               details.fileSystem + " " + details.source + " " + details.volumeOptions + "\n";
    writeFile(mountInfo_, mounts_);
  }

  void setLabel(const std::string& numbers, const std::string& label) {
    writeFile(udevData_ / ("b" + numbers), "E:ID_FS_LABEL_ENC=" + label + "\n");
  }

 private:
  static void link(const Path& to, const Path& from) {
    std::filesystem::create_directories(from.parent_path());
    std::filesystem::create_directories(to);
    std::filesystem::remove(from);
    std::filesystem::create_directory_symlink(to.lexically_relative(from.parent_path()), from);
  }

  const TempFolder temp_;
  std::string mounts_;

 protected:
  const Path mountInfo_ = temp_.path() / "mountinfo";
  const Path sys_ = temp_.path() / "sys";
  const Path udevData_ = temp_.path() / "udev";
  const Path devices_ = sys_ / "devices";
};

}  // namespace PlatformKit::Testing
