#include "DiskServices/UDisks.h"

#include "DiskServices/BlockObjects.h"
#include "DiskServices/SystemBus.h"
#include "PlatformKit/Posix/DescriptorPassing.h"

#include <exception>

#include <fcntl.h>

namespace DiskServices {
namespace {

using PlatformKit::UniqueFd;
using Kind = PlatformKit::PrivilegedOpener::Answer::Kind;

// A volume can be mounted again, by whoever watches cards, while the others are being unmounted.
constexpr int kRounds = 3;

UniqueFd openDevice(const PlatformKit::Path& device) {
  SystemBus bus;
  const auto blocks = blockObjects(bus);
  const BlockObject* block = findDevice(blocks, device.native());
  if (block == nullptr) return {};
  const Message call = bus.newCall(block->object, "org.freedesktop.UDisks2.Block", "OpenDevice");
  checked(sd_bus_message_append(call.get(), "sa{sv}", "r", 1, "flags", "i", O_CLOEXEC));
  const Message reply = bus.call(call, SystemBus::kUntilAnswered);
  int received = -1;
  checked(sd_bus_message_read(reply.get(), "h", &received));
  // The received one is closed with its message.
  return UniqueFd(fcntl(received, F_DUPFD_CLOEXEC, 0));
}

// NotAuthorizedCanObtain is no refusal: the policy wants the user to be asked, and no desktop is
// there to do so. As nobody was asked yet, another way that can ask (on the terminal) may.
bool isRefusal(const std::string& error) {
  return error == "org.freedesktop.UDisks2.Error.NotAuthorizedDismissed" ||
         error == "org.freedesktop.UDisks2.Error.NotAuthorized";
}

void unmount(SystemBus& bus, const BlockObject& block) {
  // Each call takes one mount point away.
  for (std::size_t point = 0; point < block.mountPoints; ++point) {
    const Message call = bus.newCall(block.object, "org.freedesktop.UDisks2.Filesystem", "Unmount");
    checked(sd_bus_message_append(call.get(), "a{sv}", 0));
    static_cast<void>(bus.call(call, SystemBus::kUntilAnswered));
  }
}

bool unmountAll(const std::string& device) {
  SystemBus bus;
  for (int round = 0; round <= kRounds; ++round) {
    const auto blocks = blockObjects(bus);
    const BlockObject* disk = findDevice(blocks, device);
    if (disk == nullptr) return false;
    bool mounted = false;
    for (const BlockObject& block : blocks) {
      if (block.mountPoints == 0 || !liesOn(block, *disk, blocks)) continue;
      mounted = true;
      if (round < kRounds) unmount(bus, block);
    }
    if (!mounted) return true;
  }
  return false;
}

}  // namespace

PlatformKit::PrivilegedOpener::Answer UDisks::openReadOnly(const PlatformKit::Path& device) {
  try {
    UniqueFd descriptor = openDevice(device);
    if (!PlatformKit::isReadOnlyDevice(descriptor.get(), device)) return {};
    return {Kind::opened, std::move(descriptor)};
  } catch (const BusError& error) {
    return {isRefusal(error.name()) ? Kind::declined : Kind::unavailable, {}};
  } catch (const std::exception&) {
    // No memory: nobody was asked, or their answer is lost.
    return {};
  }
}

bool UDisks::unmountDisk(const std::string& identifier) {
  try {
    return unmountAll("/dev/" + identifier);
  } catch (const std::exception&) {
    // Busy, refused or no service: the volumes stay mounted, which is what the answer says.
    return false;
  }
}

}  // namespace DiskServices
