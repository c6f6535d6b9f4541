#pragma once

#include "OffloadKit/Records/OffloadResult.h"

#include <string>

namespace ZephrimarkOffload {

/// The notification that tells of an offload's end. Plain text in the user's language, one line
/// each.
struct Notice {
  std::string title;
  std::string body;
};

/// Any thread.
Notice noticeOf(const OffloadKit::OffloadResult& result);

}  // namespace ZephrimarkOffload
