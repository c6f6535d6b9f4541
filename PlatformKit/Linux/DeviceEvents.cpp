#include "PlatformKit/Linux/DeviceEvents.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <optional>

namespace PlatformKit {
namespace {

using namespace std::string_view_literals;

std::uint32_t numberAt(std::string_view bytes, std::size_t offset) {
  std::uint32_t number = 0;
  std::memcpy(&number, bytes.data() + offset, sizeof number);
  return number;
}

// The lines KEY=VALUE, each ended by a zero byte; none when the message has another form.
std::optional<std::string_view> propertiesOf(std::string_view message) {
  if (message.starts_with("libudev\0"sv)) {
    constexpr std::size_t kMagicAt = 8;
    constexpr std::size_t kOffsetAt = 16;
    constexpr std::size_t kLengthAt = 20;
    constexpr std::size_t kHeader = 24;
    if (message.size() < kHeader) return std::nullopt;
    if (message.substr(kMagicAt, 4) != "\xFE\xED\xCA\xFE"sv) return std::nullopt;
    const std::size_t offset = numberAt(message, kOffsetAt);
    const std::size_t length = numberAt(message, kLengthAt);
    if (offset > message.size() || length > message.size() - offset) return std::nullopt;
    return message.substr(offset, length);
  }
  // The kernel's begin with a line such as "add@/devices/...".
  const std::size_t end = message.find('\0');
  if (end == std::string_view::npos || message.substr(0, end).find('@') == std::string_view::npos) {
    return std::nullopt;
  }
  return message.substr(end + 1);
}

}  // namespace

bool isBlockDeviceEvent(std::string_view message) {
  auto properties = propertiesOf(message);
  if (!properties) return false;
  while (!properties->empty()) {
    const std::size_t end = std::min(properties->find('\0'), properties->size());
    if (properties->substr(0, end) == "SUBSYSTEM=block") return true;
    properties->remove_prefix(std::min(end + 1, properties->size()));
  }
  return false;
}

}  // namespace PlatformKit
