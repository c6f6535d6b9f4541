#pragma once

#include "OffloadKit/Records/OffloadResult.h"

#include <vector>

namespace ZephrimarkOffload::Demo {

/// Made-up results of an offload of `files`. Any thread.
using Files = std::vector<OffloadKit::SourceFile>;

/// Every file verified on every drive.
OffloadKit::OffloadResult verified(const OffloadKit::OffloadPlan& plan, const Files& files);

/// The last drive was pulled before so many files, the last ones, were on it.
OffloadKit::OffloadResult disconnected(const OffloadKit::OffloadPlan& plan, const Files& files,
                                       std::size_t missing);

/// Verified, but a folder and a file of the card could not be read.
OffloadKit::OffloadResult partlyUnreadable(const OffloadKit::OffloadPlan& plan, const Files& files);

/// Verified, with an image of the card that lacks some blocks.
OffloadKit::OffloadResult withCardImage(const OffloadKit::OffloadPlan& plan, const Files& files);

}  // namespace ZephrimarkOffload::Demo
