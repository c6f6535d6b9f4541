#include "OffloadKit/Records/Version.h"

namespace OffloadKit {

std::string_view productVersion() {
  return ZEPHRIMARK_VERSION;
}

}  // namespace OffloadKit
