#include "DiskServices/UDisks.h"

#include "DiskServices/BlockObjects.h"
#include "DiskServices/SystemBus.h"
#include "DiskServices/Unmounting.h"
#include "PlatformKit/Posix/DescriptorPassing.h"

#include <exception>

#include <fcntl.h>

namespace DiskServices {
namespace {

using PlatformKit::UniqueFd;
using Kind = PlatformKit::PrivilegedOpener::Answer::Kind;

UniqueFd openDevice(const PlatformKit::Path& device) {
  SystemBus bus;
  const auto blocks = diskObjects(bus).blocks;
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
    SystemBus bus;
    return unmountAll(bus, "/dev/" + identifier) == Unmounting::nothingMounted;
  } catch (const std::exception&) {
    // Busy, refused or no service: the volumes stay mounted, which is what the answer says.
    return false;
  }
}

}  // namespace DiskServices
