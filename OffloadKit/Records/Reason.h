#pragma once

#include "DeviceKit/Reason.h"

namespace OffloadKit {

/// Every failure that a run keeps. Devices give reasons as well, so it lies with them.
using DeviceKit::Reason;

}  // namespace OffloadKit
