#pragma once

#include "ZephrimarkOffload/Model/Background.h"

#include <functional>
#include <map>
#include <optional>
#include <vector>

#include <QTimer>

namespace ZephrimarkOffload {

/// Keeps what is known of the chosen destinations, asked in the background every two seconds, since
/// other programs fill drives too. A destination on a dead volume keeps nobody waiting but itself.
/// Main thread, with an event loop.
class DestinationMonitor {
 public:
  /// `changed` is called when something else is known than before, never within a call of this
  /// class. `background` outlives this object.
  DestinationMonitor(Background& background, std::function<void()> changed);

  /// From now on these are followed; what is known of others is forgotten.
  void follow(const std::vector<PlatformKit::Path>& destinations);

  /// Asks at once, without waiting for the next time.
  void refresh();

  /// None until it has answered, and for what is not followed.
  [[nodiscard]] std::optional<DestinationFacts> facts(const PlatformKit::Path& destination) const;

 private:
  void ask(const PlatformKit::Path& destination);

  Background& background_;
  std::function<void()> changed_;
  std::map<PlatformKit::Path, std::optional<DestinationFacts>> facts_;
  QTimer again_;
};

}  // namespace ZephrimarkOffload
