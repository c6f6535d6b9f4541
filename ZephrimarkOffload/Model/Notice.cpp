#include "ZephrimarkOffload/Model/Notice.h"

#include "OffloadKit/Records/Verdict.h"
#include "TextKit/ByteCount.h"
#include "TextKit/Translation.h"
#include "TextKit/Unicode.h"

namespace ZephrimarkOffload {
namespace {

using TextKit::filled;
using TextKit::translate;
using Finding = OffloadKit::Verdict::Finding;

}  // namespace

Notice noticeOf(const OffloadKit::OffloadResult& result) {
  const std::string name = TextKit::singleLineText(result.plan.sourceName);
  const std::size_t drives = result.plan.destinations.size();
  const OffloadKit::Verdict verdict(result);
  const std::string title = verdict.isGood()
                                ? translate("Notice", "Offload verified")
                                : translate("Notice", "Offload finished with problems");
  if (verdict.worst() == Finding::notVerified) {
    const std::size_t failed = result.failedFiles().size();
    return {title, filled(translate("Notice", "%1: %2 file(s) weren't verified on every drive.",
                                    "%1: %2 file(s) weren't verified on every drive.", failed),
                          {name, std::to_string(failed)})};
  }
  if (verdict.worst() == Finding::cardUnreadable) {
    const std::size_t missing = result.unreadable.size();
    return {title, filled(translate("Notice", "%1: %2 item(s) couldn't be read from the card.",
                                    "%1: %2 item(s) couldn't be read from the card.", missing),
                          {name, std::to_string(missing)})};
  }
  const std::size_t files = result.files.size();
  return {
      title,
      filled(translate("Notice", "%1: %2, %3, checked on %4 drives.",
                       "%1: %2, %3, checked on %4 drive.", drives),
             {name,
              filled(translate("Notice", "%1 files", "%1 files", files), {std::to_string(files)}),
              TextKit::shownByteCount(result.totalBytes()), std::to_string(drives)})};
}

}  // namespace ZephrimarkOffload
