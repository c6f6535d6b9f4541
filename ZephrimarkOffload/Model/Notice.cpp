#include "ZephrimarkOffload/Model/Notice.h"

#include "PlatformKit/ByteCount.h"
#include "PlatformKit/Unicode.h"

#include <fmt/format.h>

namespace ZephrimarkOffload {

Notice noticeOf(const OffloadKit::OffloadResult& result) {
  const std::string name = PlatformKit::singleLineText(result.plan.sourceName);
  const std::size_t drives = result.plan.destinations.size();
  if (!result.allVerified()) {
    return {"Offload finished with problems",
            fmt::format("{}: {} file(s) weren't verified on every drive.", name,
                        result.failedFiles().size())};
  }
  if (!result.unreadable.empty()) {
    return {"Offload finished with problems",
            fmt::format("{}: {} item(s) couldn't be read from the card.", name,
                        result.unreadable.size())};
  }
  return {
      "Offload verified",
      fmt::format("{}: {} files, {}, checked on {} drive{}.", name, result.files.size(),
                  PlatformKit::byteCountText(result.totalBytes()), drives, drives == 1 ? "" : "s")};
}

}  // namespace ZephrimarkOffload
