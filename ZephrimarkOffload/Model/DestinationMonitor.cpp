#include "ZephrimarkOffload/Model/DestinationMonitor.h"

#include <chrono>

namespace ZephrimarkOffload {

using PlatformKit::Path;

// Often enough for a figure of free space that people look at.
constexpr std::chrono::seconds kEvery{2};

DestinationMonitor::DestinationMonitor(Background& background, std::function<void()> changed)
    : background_(background), changed_(std::move(changed)) {
  again_.setInterval(kEvery);
  again_.callOnTimeout([this] { refresh(); });
}

void DestinationMonitor::follow(const std::vector<Path>& destinations) {
  std::map<Path, std::optional<DestinationFacts>> followed;
  for (const Path& destination : destinations) followed[destination] = facts(destination);
  facts_ = std::move(followed);
  facts_.empty() ? again_.stop() : again_.start();
  refresh();
}

void DestinationMonitor::refresh() {
  for (const auto& entry : facts_) ask(entry.first);
}

void DestinationMonitor::ask(const Path& destination) {
  background_.ask(
      "destination " + destination.native(),
      [destination](DiskQueries& disks) { return disks.destination(destination); },
      [this, destination](const DestinationFacts& facts) {
        const auto followed = facts_.find(destination);
        if (followed == facts_.end() || followed->second == facts) return;
        followed->second = facts;
        changed_();
      });
}

std::optional<DestinationFacts> DestinationMonitor::facts(const Path& destination) const {
  const auto followed = facts_.find(destination);
  return followed == facts_.end() ? std::nullopt : followed->second;
}

}  // namespace ZephrimarkOffload
