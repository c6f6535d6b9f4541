#include "DiskServices/BlockObjects.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace DiskServices {
namespace {

bool isObject(const std::string& object) {
  return object.size() > 1;
}

std::string readText(sd_bus_message* message, char type) {
  const char* text = nullptr;
  checked(sd_bus_message_read_basic(message, type, &text));
  return text;
}

// `type`: 's' or 'o'.
std::string readValue(sd_bus_message* message, char type) {
  const std::array<char, 2> contents = {type, '\0'};
  checked(sd_bus_message_enter_container(message, 'v', contents.data()));
  std::string text = readText(message, type);
  checked(sd_bus_message_exit_container(message));
  return text;
}

bool readFlag(sd_bus_message* message) {
  int flag = 0;
  checked(sd_bus_message_read(message, "v", "b", &flag));
  return flag != 0;
}

// Paths travel as bytes that end in 0.
std::string readPath(sd_bus_message* message) {
  checked(sd_bus_message_enter_container(message, 'v', "ay"));
  const void* bytes = nullptr;
  std::size_t size = 0;
  checked(sd_bus_message_read_array(message, 'y', &bytes, &size));
  std::string path(static_cast<const char*>(bytes), size);
  checked(sd_bus_message_exit_container(message));
  if (path.ends_with('\0')) path.pop_back();
  return path;
}

std::size_t countPaths(sd_bus_message* message) {
  std::size_t count = 0;
  checked(sd_bus_message_enter_container(message, 'v', "aay"));
  forEachElement(message, "ay", [&] {
    checked(sd_bus_message_skip(message, "ay"));
    ++count;
  });
  checked(sd_bus_message_exit_container(message));
  return count;
}

/// An object of any kind; what belongs to other kinds stays empty.
struct AnyObject {
  BlockObject block;
  DriveObject drive;
  bool isDrive = false;
};

void readProperty(sd_bus_message* message, std::string_view interface, AnyObject& object) {
  BlockObject& block = object.block;
  checked(sd_bus_message_enter_container(message, 'e', "sv"));
  const std::string name = std::string(interface) + "." + readText(message, 's');
  if (name == "org.freedesktop.UDisks2.Block.Device") {
    block.device = readPath(message);
  } else if (name == "org.freedesktop.UDisks2.Block.Drive") {
    block.drive = readValue(message, 'o');
  } else if (name == "org.freedesktop.UDisks2.Block.CryptoBackingDevice") {
    block.encrypted = readValue(message, 'o');
  } else if (name == "org.freedesktop.UDisks2.Partition.Table") {
    block.table = readValue(message, 'o');
  } else if (name == "org.freedesktop.UDisks2.Filesystem.MountPoints") {
    block.mountPoints = countPaths(message);
  } else if (name == "org.freedesktop.UDisks2.Drive.Ejectable") {
    object.drive.ejectable = readFlag(message);
  } else if (name == "org.freedesktop.UDisks2.Drive.CanPowerOff") {
    object.drive.canPowerOff = readFlag(message);
  } else if (name == "org.freedesktop.UDisks2.Drive.SiblingId") {
    object.drive.siblings = readValue(message, 's');
  } else {
    checked(sd_bus_message_skip(message, "v"));
  }
  checked(sd_bus_message_exit_container(message));
}

AnyObject readObjectWithProperties(sd_bus_message* message) {
  AnyObject object;
  checked(sd_bus_message_enter_container(message, 'e', "oa{sa{sv}}"));
  object.block.object = object.drive.object = readText(message, 'o');
  forEachElement(message, "{sa{sv}}", [&] {
    checked(sd_bus_message_enter_container(message, 'e', "sa{sv}"));
    const std::string interface = readText(message, 's');
    if (interface == "org.freedesktop.UDisks2.Drive") object.isDrive = true;
    forEachElement(message, "{sv}", [&] { readProperty(message, interface, object); });
    checked(sd_bus_message_exit_container(message));
  });
  checked(sd_bus_message_exit_container(message));
  return object;
}

}  // namespace

DiskObjects diskObjects(SystemBus& bus) {
  const Message reply =
      bus.call(bus.newCall("/org/freedesktop/UDisks2", "org.freedesktop.DBus.ObjectManager",
                           "GetManagedObjects"),
               SystemBus::kPatient);
  DiskObjects objects;
  forEachElement(reply.get(), "{oa{sa{sv}}}", [&] {
    AnyObject object = readObjectWithProperties(reply.get());
    // Jobs and the manager are neither.
    if (!object.block.device.empty()) objects.blocks.push_back(std::move(object.block));
    if (object.isDrive) objects.drives.push_back(std::move(object.drive));
  });
  return objects;
}

const BlockObject* findDevice(const std::vector<BlockObject>& blocks, const std::string& device) {
  const auto found = std::find_if(blocks.begin(), blocks.end(),
                                  [&](const BlockObject& block) { return block.device == device; });
  return found == blocks.end() ? nullptr : &*found;
}

const DriveObject* findDrive(const std::vector<DriveObject>& drives, const std::string& object) {
  const auto found = std::find_if(drives.begin(), drives.end(),
                                  [&](const DriveObject& drive) { return drive.object == object; });
  return found == drives.end() ? nullptr : &*found;
}

bool liesOn(const BlockObject& block, const BlockObject& disk,
            const std::vector<BlockObject>& blocks) {
  const BlockObject* below = &block;
  // As many steps as there are devices, should they ever point at each other in a circle.
  for (std::size_t steps = 0; steps < blocks.size(); ++steps) {
    if (below->object == disk.object || below->table == disk.object) return true;
    if (isObject(disk.drive) && below->drive == disk.drive) return true;
    const std::string& next = below->encrypted;
    const auto found = std::find_if(blocks.begin(), blocks.end(), [&](const BlockObject& other) {
      return isObject(next) && other.object == next;
    });
    if (found == blocks.end()) return false;
    below = &*found;
  }
  return false;
}

}  // namespace DiskServices
