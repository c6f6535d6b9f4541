#include "ZephrimarkOffload/Model/CardEjection.h"

#include "OffloadKit/Wording/ShownReason.h"
#include "TextKit/Translation.h"

namespace ZephrimarkOffload {

void CardEjection::begin(const PlatformKit::Path& volume, const std::string& name) {
  if (isGoingOn()) return;
  state_ = GoingOn{};
  emit changed();
  background_.ask(
      "eject " + volume.native(),
      [volume, name](DiskQueries& disks) { return disks.eject(volume, name); },
      [this, name](const std::optional<DeviceKit::Reason>& failure) {
        if (failure) {
          state_ = Failed{*failure};
        } else {
          state_ = Ejected{name};
        }
        emit changed();
      });
}

void CardEjection::forget() {
  if (!isGoingOn()) state_ = None{};
}

std::string CardEjection::message() const {
  if (const auto* failed = std::get_if<Failed>(&state_)) {
    return OffloadKit::shown(failed->reason);
  }
  if (const auto* ejected = std::get_if<Ejected>(&state_)) {
    return TextKit::filled(TextKit::translate("Setup", "Ejected %1. You can take it out now."),
                           {ejected->name});
  }
  return {};
}

}  // namespace ZephrimarkOffload
