#include "PlatformKit/Linux/DeviceEvents.h"

#include "fuzz/Input.h"

#include <string>

using PlatformKit::isBlockDeviceEvent;

namespace {

std::string fourBytes(std::uint32_t number) {
  std::string bytes(sizeof number, '\0');
  std::memcpy(bytes.data(), &number, sizeof number);
  return bytes;
}

// As udev sends it, with these properties.
std::string udevMessage(const std::string& properties) {
  constexpr std::uint32_t kHeader = 40;
  std::string message("libudev\0\xFE\xED\xCA\xFE", 12);
  message += fourBytes(kHeader) + fourBytes(kHeader);
  message += fourBytes(static_cast<std::uint32_t>(properties.size()));
  message.resize(kHeader);
  return message + properties;
}

}  // namespace

/// Input: a message about a device, and as a whole also properties.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(Fuzz::textOf(data, size));
  const std::string wanted("SUBSYSTEM=block");
  Fuzz::require(!isBlockDeviceEvent(text) || text.find(wanted) != std::string::npos,
                "only what names the subsystem counts");
  bool has = false;
  for (const auto part : Fuzz::partsOf(text, size + 1)) has |= part == wanted;
  const std::string kernels = std::string("add@/devices/x") + '\0' + text;
  Fuzz::require(isBlockDeviceEvent(kernels) == has, "the kernel's messages are understood");
  Fuzz::require(isBlockDeviceEvent(udevMessage(text)) == has, "udev's messages are understood");
  return 0;
}
