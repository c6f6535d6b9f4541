#include "ZephrimarkOffload/Model/DestinationBoard.h"

#include <chrono>

namespace ZephrimarkOffload {

using PlatformKit::Path;

// Often enough for a figure of free space that people look at.
constexpr std::chrono::seconds kEvery{2};

DestinationBoard::DestinationBoard(Background& background, std::function<void()> changed)
    : background_(background), changed_(std::move(changed)) {
  again_.setInterval(kEvery);
  again_.callOnTimeout([this] { refresh(); });
}

void DestinationBoard::follow(const std::vector<Path>& destinations) {
  std::map<Path, std::optional<DestinationFacts>> followed;
  for (const Path& destination : destinations) followed[destination] = facts(destination);
  facts_ = std::move(followed);
  facts_.empty() ? again_.stop() : again_.start();
  refresh();
}

void DestinationBoard::refresh() {
  for (const auto& entry : facts_) ask(entry.first);
}

void DestinationBoard::ask(const Path& destination) {
  background_.ask(
      "destination " + destination.native(),
      [destination](DiskQuestions& questions) { return questions.destination(destination); },
      [this, destination](const DestinationFacts& facts) {
        const auto followed = facts_.find(destination);
        if (followed == facts_.end() || followed->second == facts) return;
        followed->second = facts;
        changed_();
      });
}

std::optional<DestinationFacts> DestinationBoard::facts(const Path& destination) const {
  const auto followed = facts_.find(destination);
  return followed == facts_.end() ? std::nullopt : followed->second;
}

}  // namespace ZephrimarkOffload
