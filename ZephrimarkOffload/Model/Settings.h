#pragma once

#include "PlatformKit/FileSystem.h"
#include "ZephrimarkOffload/Model/Choices.h"

#include <optional>
#include <vector>

#include <QSettings>
#include <QString>
#include <QTimer>

namespace ZephrimarkOffload {

/// What the application is told at its start, in its settings or on the command line.
struct LaunchOptions {
  std::optional<PlatformKit::Path> source;                     ///< "ZMSource"
  std::optional<std::vector<PlatformKit::Path>> destinations;  ///< "ZMDestinations", ":" between
  bool autoStart = false;                                      ///< "ZMAutoStart"
};

/// The application's settings file. Any content, also none or a damaged one, gives usable values: a
/// value of the wrong kind counts as missing. Main thread.
class Settings {
 public:
  /// In the user's folder for settings.
  Settings();
  /// In the file at `path`, which need not exist.
  explicit Settings(const QString& path);
  ~Settings();
  Settings(const Settings&) = delete;
  Settings& operator=(const Settings&) = delete;

  /// What was saved last. Destinations need not exist any more; the caller drops those.
  [[nodiscard]] Choices load() const;

  /// Writes every value, a moment later or at the end of this object. Where the file cannot be
  /// written, the choices last until the end of this launch; a warning goes to the log, once.
  void save(const Choices& choices);

  /// The launch options among `arguments` (each a hyphen and the key, then its value) and, where
  /// they name none, in the file. The last of several holds; what is no option is passed over.
  [[nodiscard]] LaunchOptions launchOptions(const std::vector<std::string>& arguments) const;

  /// The window's size as it was left; none at first, or when it is no size.
  [[nodiscard]] std::optional<std::pair<int, int>> windowSize() const;
  void saveWindowSize(int width, int height);

 private:
  void prepare();
  [[nodiscard]] std::optional<QString> text(const QString& key) const;
  [[nodiscard]] std::optional<bool> flag(const QString& key) const;
  void write();

  QSettings file_;
  QTimer soon_;
  bool warned_ = false;
};

}  // namespace ZephrimarkOffload
