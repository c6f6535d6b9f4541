#pragma once

#include "OffloadKit/Records/SourceFile.h"
#include "ZephrimarkOffload/Model/DiskQueries.h"

#include <vector>

namespace ZephrimarkOffload::Demo {

/// So many made-up clips and sound files, as a camera names them, with these bytes in all. The same
/// for the same content. Any thread.
std::vector<OffloadKit::SourceFile> footage(const SourceCount& content);

}  // namespace ZephrimarkOffload::Demo
