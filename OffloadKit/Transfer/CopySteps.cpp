#include "OffloadKit/Transfer/CopySteps.h"

namespace OffloadKit {

using PlatformKit::ErrorNumber;
using PlatformKit::Folder;
using PlatformKit::Path;
using PlatformKit::Result;

Result<WritableCopy> WritableCopy::create(Folder& folder, Path temporary, Path final) {
  auto pending = PendingCopy::create(folder, std::move(temporary), std::move(final));
  if (!pending.ok()) return ErrorNumber{pending.error()};
  return WritableCopy(std::move(pending.value()));
}

Result<FlushedCopy> WritableCopy::flush() && {
  const int error = pending_.file()->flush();
  pending_.close();
  if (error != 0) return ErrorNumber{error};
  Folder& folder = pending_.folder();
  return FlushedCopy(folder, std::move(pending_));
}

FileDigest& FlushedCopy::readBack(HashKit::HashAlgorithm algorithm, std::uint64_t size) {
  digest_ = std::make_unique<FileDigest>(*folder_, temporary(), algorithm, size);
  return *digest_;
}

std::optional<ProvenCopy> FlushedCopy::prove(const std::string& hash) && {
  if (!digest_) return std::nullopt;
  const auto found = digest_->result();
  if (!found.ok() || found.value() != hash) return std::nullopt;
  return ProvenCopy(std::move(pending_), std::move(digest_));
}

}  // namespace OffloadKit
