#include "OffloadKit/Transfer/PendingCopy.h"

#include <cerrno>
#include <utility>

namespace OffloadKit {

using PlatformKit::ErrorNumber;
using PlatformKit::Folder;
using PlatformKit::Path;
using PlatformKit::Result;

Result<PendingCopy> PendingCopy::create(Folder& folder, Path temporary, Path final) {
  auto created = folder.createFile(temporary);
  if (created.error() == EEXIST) {
    // Removed and made anew, never opened: what lies there could be a link to something precious.
    if (const int error = folder.removeFile(temporary); error != 0) return ErrorNumber{error};
    created = folder.createFile(temporary);
  }
  if (!created.ok()) return ErrorNumber{created.error()};
  const auto identity = created.value()->identity();
  if (!identity.ok()) {
    static_cast<void>(folder.removeFile(temporary));
    return ErrorNumber{identity.error()};
  }
  return PendingCopy(folder, std::move(created.value()), identity.value(), std::move(temporary),
                     std::move(final));
}

PendingCopy::PendingCopy(Folder& folder, std::unique_ptr<PlatformKit::WritableFile> file,
                         PlatformKit::ItemIdentity identity, Path temporary, Path final)
    : folder_(&folder),
      file_(std::move(file)),
      identity_(identity),
      temporary_(std::move(temporary)),
      final_(std::move(final)) {}

PendingCopy::PendingCopy(PendingCopy&& other) noexcept
    : folder_(std::exchange(other.folder_, nullptr)),
      file_(std::move(other.file_)),
      identity_(other.identity_),
      temporary_(std::move(other.temporary_)),
      final_(std::move(other.final_)),
      modified_(other.modified_) {}

PendingCopy::~PendingCopy() {
  close();
  if (folder_ == nullptr) return;
  // Somebody may have put a file of their own there, or a link in place of a folder above.
  const auto there = folder_->status(temporary_);
  if (there.ok() && there.value().identity != identity_) return;
  static_cast<void>(folder_->removeFile(temporary_));
}

int PendingCopy::commit() {
  if (const int error = checkIdentity(); error != 0) return error;
  return committed(folder_->moveWithoutReplacing(temporary_, final_));
}

int PendingCopy::commitReplacing() {
  if (const int error = checkIdentity(); error != 0) return error;
  return committed(folder_->moveReplacing(temporary_, final_));
}

int PendingCopy::checkIdentity() {
  const auto status = folder_->status(temporary_);
  if (!status.ok()) return status.error();
  modified_ = status.value().modified;
  return status.value().identity == identity_ ? 0 : ESTALE;
}

int PendingCopy::committed(int error) {
  if (error == 0) folder_ = nullptr;
  return error;
}

}  // namespace OffloadKit
