#pragma once

#include "Updates/UpdateCheck.h"
#include "Updates/UpdateConfiguration.h"
#include "Updates/UpdateResult.h"

#include <memory>
#include <optional>

#include <QObject>

namespace Updates {

/// Looks up whether there is a newer version, when the user asks for it. It installs nothing and
/// never asks a server on its own. Main thread; needs a running event loop. May be destroyed at any
/// time, also during a check and in a handler of its signals; a check then ends without a result.
class AppUpdater final : public QObject {
  Q_OBJECT
  /// Whether a check can be started now: enabled, and none is going on.
  Q_PROPERTY(bool canCheckForUpdates READ canCheckForUpdates NOTIFY canCheckForUpdatesChanged)

 public:
  /// Asks nobody. `transport`: for tests; the usual one otherwise.
  explicit AppUpdater(const UpdateConfiguration& configuration, Transport transport = {});
  ~AppUpdater() override;

  /// Whether this copy can check at all: the feed's address is valid, starts with "https://" and
  /// has a host, the key is 32 bytes in base64, and the current version can be read. Does not
  /// change.
  [[nodiscard]] bool isEnabled() const { return plan_.has_value(); }
  /// As the property.
  [[nodiscard]] bool canCheckForUpdates() const { return isEnabled() && !check_; }

  /// Starts a check, whose result comes with finished(). Nothing when none can be started now.
  Q_INVOKABLE void checkForUpdates();

 Q_SIGNALS:
  /// A check began or ended.
  void canCheckForUpdatesChanged();
  /// Comes once per check, when the next one can be started.
  void finished(const Updates::UpdateResult& result);

 private:
  void end(const UpdateResult& result);

  std::optional<UpdatePlan> plan_;
  Transport transport_;
  std::unique_ptr<UpdateCheck> check_;
};

}  // namespace Updates
