#include "OffloadKit/Transfer/PendingCopy.h"

#include <cerrno>
#include <utility>

namespace OffloadKit {

using PlatformKit::ErrorNumber;
using PlatformKit::FileSystem;
using PlatformKit::Path;
using PlatformKit::Result;

Result<PendingCopy> PendingCopy::create(FileSystem& fileSystem, Path temporary, Path final) {
  auto created = fileSystem.createFile(temporary);
  if (created.error() == EEXIST) {
    // Removed and made anew, never opened: what lies there could be a link to something precious.
    if (const int error = fileSystem.removeFile(temporary); error != 0) return ErrorNumber{error};
    created = fileSystem.createFile(temporary);
  }
  if (!created.ok()) return ErrorNumber{created.error()};
  const auto identity = created.value()->identity();
  if (!identity.ok()) {
    static_cast<void>(fileSystem.removeFile(temporary));
    return ErrorNumber{identity.error()};
  }
  return PendingCopy(fileSystem, std::move(created.value()), identity.value(), std::move(temporary),
                     std::move(final));
}

PendingCopy::PendingCopy(FileSystem& fileSystem, std::unique_ptr<PlatformKit::WritableFile> file,
                         PlatformKit::ItemIdentity identity, Path temporary, Path final)
    : fileSystem_(&fileSystem),
      file_(std::move(file)),
      identity_(identity),
      temporary_(std::move(temporary)),
      final_(std::move(final)) {}

PendingCopy::PendingCopy(PendingCopy&& other) noexcept
    : fileSystem_(std::exchange(other.fileSystem_, nullptr)),
      file_(std::move(other.file_)),
      identity_(other.identity_),
      temporary_(std::move(other.temporary_)),
      final_(std::move(other.final_)),
      modified_(other.modified_) {}

PendingCopy::~PendingCopy() {
  close();
  if (fileSystem_ == nullptr) return;
  // Somebody may have put a file of their own there, or a link in place of a folder above.
  const auto there = fileSystem_->status(temporary_);
  if (there.ok() && there.value().identity != identity_) return;
  static_cast<void>(fileSystem_->removeFile(temporary_));
}

int PendingCopy::commit() {
  if (const int error = checkIdentity(); error != 0) return error;
  return committed(fileSystem_->moveWithoutReplacing(temporary_, final_));
}

int PendingCopy::commitReplacing() {
  if (const int error = checkIdentity(); error != 0) return error;
  return committed(fileSystem_->moveReplacing(temporary_, final_));
}

int PendingCopy::checkIdentity() {
  const auto status = fileSystem_->status(temporary_);
  if (!status.ok()) return status.error();
  modified_ = status.value().modified;
  return status.value().identity == identity_ ? 0 : ESTALE;
}

int PendingCopy::committed(int error) {
  if (error == 0) fileSystem_ = nullptr;
  return error;
}

}  // namespace OffloadKit
