#include "DiskServices/DiskEjector.h"

#include "DiskServices/BlockObjects.h"
#include "DiskServices/SystemBus.h"
#include "DiskServices/Unmounting.h"

#include <algorithm>
#include <array>
#include <exception>
#include <string_view>

namespace DiskServices {
namespace {

using Answer = PlatformKit::Ejector::Answer;

constexpr std::string_view kErrorsOfUDisks = "org.freedesktop.UDisks2.Error.";

Answer answerTo(std::string_view error) {
  // The bus or the library: UDisks2 names its own errors.
  if (!error.starts_with(kErrorsOfUDisks)) return Answer::unavailable;
  error.remove_prefix(kErrorsOfUDisks.size());
  if (error == "DeviceBusy" || error == "AlreadyUnmounting") return Answer::busy;
  if (error.starts_with("NotAuthorized")) return Answer::declined;
  return Answer::failed;
}

// What a drive answers that cannot be ejected, whatever its properties say, or that has gone with
// its card.
bool hasNothingToEject(std::string_view error) {
  constexpr std::array<std::string_view, 4> kErrors = {
      "org.freedesktop.UDisks2.Error.NotSupported", "org.freedesktop.DBus.Error.UnknownObject",
      "org.freedesktop.DBus.Error.UnknownInterface", "org.freedesktop.DBus.Error.UnknownMethod"};
  return std::find(kErrors.begin(), kErrors.end(), error) != kErrors.end();
}

void call(SystemBus& bus, const std::string& object, const char* interface, const char* member) {
  const Message message = bus.newCall(object, interface, member);
  checked(sd_bus_message_append(message.get(), "a{sv}", 0));
  static_cast<void>(bus.call(message, SystemBus::kUntilAnswered));
}

// Whether another drive would lose its power with this one.
bool sharesPower(const DriveObject& drive, const std::vector<DriveObject>& drives) {
  return !drive.siblings.empty() &&
         std::count_if(drives.begin(), drives.end(), [&](const DriveObject& other) {
           return other.siblings == drive.siblings;
         }) > 1;
}

// Decrypted content keeps its disk in use, mounted or not.
void lockDecrypted(SystemBus& bus, const BlockObject& disk,
                   const std::vector<BlockObject>& blocks) {
  for (const BlockObject& block : blocks) {
    if (block.encrypted.size() <= 1 || !liesOn(block, disk, blocks)) continue;
    call(bus, block.encrypted, "org.freedesktop.UDisks2.Encrypted", "Lock");
  }
}

void ejectUnmounted(SystemBus& bus, const std::string& device) {
  const DiskObjects objects = diskObjects(bus);
  const BlockObject* disk = findDevice(objects.blocks, device);
  if (disk == nullptr) return;
  lockDecrypted(bus, *disk, objects.blocks);
  const DriveObject* drive = findDrive(objects.drives, disk->drive);
  // A disk image has none.
  if (drive == nullptr) return;
  constexpr const char* kDrive = "org.freedesktop.UDisks2.Drive";
  if (drive->ejectable) {
    call(bus, drive->object, kDrive, "Eject");
  } else if (drive->canPowerOff && !sharesPower(*drive, objects.drives)) {
    call(bus, drive->object, kDrive, "PowerOff");
  }
}

Answer ejectAfterUnmounting(SystemBus& bus, const std::string& device) {
  try {
    ejectUnmounted(bus, device);
    return Answer::ejected;
  } catch (const BusError& error) {
    if (hasNothingToEject(error.name())) return Answer::ejected;
    return answerTo(error.name()) == Answer::busy ? Answer::busy : Answer::unmountedOnly;
  }
}

}  // namespace

Answer DiskEjector::ejectDisk(const std::string& identifier) {
  try {
    const std::string device = "/dev/" + identifier;
    SystemBus bus;
    switch (unmountAll(bus, device)) {
      case Unmounting::unknownDisk:
        return Answer::unavailable;
      case Unmounting::comesBack:
        return Answer::busy;
      case Unmounting::nothingMounted:
        break;
    }
    return ejectAfterUnmounting(bus, device);
  } catch (const BusError& error) {
    return answerTo(error.name());
  } catch (const std::exception&) {
    // No memory: what has been done so far is not known.
    return Answer::failed;
  }
}

}  // namespace DiskServices
