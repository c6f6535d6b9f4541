#pragma once

#include "ZephrimarkOffload/Model/Background.h"

#include <functional>
#include <memory>
#include <string>

namespace ZephrimarkOffload {

/// A source that was chosen, with what is known of it by now.
struct ChosenSource {
  PlatformKit::Path path;  ///< normalized; empty while none is chosen
  SourceFacts facts;       ///< until they are known, with the name only
  SourceCount count;       ///< zeros until its files are counted
};

/// Follows the chosen source: asks in the background what it is and counts its files, and notices
/// when another card lies in its place. Main thread.
class SourceMonitor {
 public:
  /// `changed` is called when a source is chosen and when more is known of it. `background`
  /// outlives this object.
  SourceMonitor(Background& background, std::function<void()> changed);

  /// Chooses another source, or none with an empty path. The one that is chosen already stays as it
  /// is.
  void choose(const PlatformKit::Path& path);

  /// Asks whether it is still what it was. What turns out to be another is chosen anew.
  void check();

  /// The chosen source, never null. Each choice is an object of its own, also for a path that was
  /// chosen before, since another card can have the same: the same pointer is the same source.
  [[nodiscard]] std::shared_ptr<const ChosenSource> source() const { return source_; }

  /// The camera's brand. Until that of a new source is known, that of the one before.
  [[nodiscard]] const std::string& camera() const { return camera_; }

 private:
  void begin(const PlatformKit::Path& path);
  void count();

  Background& background_;
  std::function<void()> changed_;
  std::shared_ptr<ChosenSource> source_ = std::make_shared<ChosenSource>();
  std::string camera_ = "Camera";
};

}  // namespace ZephrimarkOffload
