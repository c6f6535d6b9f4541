#include "PlatformKit/Posix/SystemText.h"

#include <string.h>

namespace PlatformKit {

std::string systemText(int error) {
  const char* text = strerrordesc_np(error);
  return text != nullptr ? text : "Unknown error " + std::to_string(error);
}

}  // namespace PlatformKit
