#pragma once

#include "DeviceKit/Reason.h"

#include <string>
#include <utility>

/// A reason by its sentence: equal to every reason that says the same.
inline DeviceKit::Reason because(std::string sentence) {
  return DeviceKit::Reason::fromOutside(std::move(sentence));
}
