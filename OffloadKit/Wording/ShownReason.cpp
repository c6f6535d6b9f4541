#include "OffloadKit/Wording/ShownReason.h"

#include "TextKit/ByteCount.h"
#include "TextKit/Translation.h"

namespace OffloadKit {

std::string shown(const Reason& reason) {
  return reason.in(
      {[](const std::string& english) { return TextKit::translate("Errors", english.c_str()); },
       TextKit::shownByteCount});
}

}  // namespace OffloadKit
