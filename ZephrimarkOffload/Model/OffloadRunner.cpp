#include "ZephrimarkOffload/Model/OffloadRunner.h"

#include "DeviceKit/DiskEnumerator.h"
#include "OffloadKit/Records/OffloadError.h"

namespace ZephrimarkOffload {

OffloadKit::OffloadResult EngineRunner::run(const OffloadKit::OffloadPlan& plan,
                                            const OffloadKit::ProgressCallback& progress) {
  if (plan.cardImage) {
    // Cards can be exchanged between the choice and the start.
    const auto disk = DeviceKit::DiskEnumerator(disks_, nullptr).wholeDisk(plan.source);
    if (!disk || disk->rawPath != plan.cardImage->devicePath ||
        disk->size != plan.cardImage->size) {
      throw OffloadKit::OffloadError::cardImageUnavailable(
          OffloadKit::Reason(OffloadKit::Reason::Kind::otherCardThere));
    }
  }
  return engine_.run(plan, progress);
}

}  // namespace ZephrimarkOffload
