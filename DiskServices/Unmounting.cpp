#include "DiskServices/Unmounting.h"

#include "DiskServices/BlockObjects.h"

namespace DiskServices {
namespace {

// A volume can be mounted again, by whoever watches cards, while the others are being unmounted.
constexpr int kRounds = 3;

void unmount(SystemBus& bus, const BlockObject& block) {
  // Each call takes one mount point away.
  for (std::size_t point = 0; point < block.mountPoints; ++point) {
    const Message call = bus.newCall(block.object, "org.freedesktop.UDisks2.Filesystem", "Unmount");
    checked(sd_bus_message_append(call.get(), "a{sv}", 0));
    try {
      static_cast<void>(bus.call(call, SystemBus::kUntilAnswered));
    } catch (const BusError& error) {
      // Somebody else was faster; the next round looks again.
      if (error.name() != "org.freedesktop.UDisks2.Error.NotMounted") throw;
    }
  }
}

}  // namespace

Unmounting unmountAll(SystemBus& bus, const std::string& device) {
  for (int round = 0; round <= kRounds; ++round) {
    const auto blocks = diskObjects(bus).blocks;
    const BlockObject* disk = findDevice(blocks, device);
    // A disk may well be taken out as soon as its last volume is unmounted.
    if (disk == nullptr) return round == 0 ? Unmounting::unknownDisk : Unmounting::nothingMounted;
    bool mounted = false;
    for (const BlockObject& block : blocks) {
      if (block.mountPoints == 0 || !liesOn(block, *disk, blocks)) continue;
      mounted = true;
      if (round < kRounds) unmount(bus, block);
    }
    if (!mounted) return Unmounting::nothingMounted;
  }
  return Unmounting::comesBack;
}

}  // namespace DiskServices
