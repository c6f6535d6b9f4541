#include "OffloadKit/Copying/CopyResources.h"

#include "OffloadKit/Records/OffloadError.h"

namespace OffloadKit {

void CopyResources::checkPlaces() const {
  for (std::size_t i = 0; i < plan.destinations.size(); ++i) health.checkPlace(i);
}

void CopyResources::throwIfCancelled() const {
  if (isCancelled()) throw OffloadError::cancelled();
}

}  // namespace OffloadKit
