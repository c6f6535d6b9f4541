#include "OffloadKit/Copying/CopyBatch.h"

#include "OffloadKit/Copying/FileGroup.h"
#include "OffloadKit/Copying/StreamedCopy.h"

namespace OffloadKit {

NextBatch nextBatch(std::span<const SourceFile> files, CopyResources& resources) {
  if (files.empty()) return {};
  const auto together = files.first(groupLength(files, resources));
  if (together.size() == 1) {
    return {together, std::make_unique<StreamedCopy>(together.front(), resources)};
  }
  return {together, std::make_unique<FileGroup>(together, resources)};
}

}  // namespace OffloadKit
