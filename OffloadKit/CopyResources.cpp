#include "OffloadKit/CopyResources.h"

#include "OffloadKit/OffloadError.h"

namespace OffloadKit {

void CopyResources::throwIfCancelled() const {
  if (isCancelled()) throw OffloadError::cancelled();
}

}  // namespace OffloadKit
