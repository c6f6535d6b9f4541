#pragma once

#include "PlatformKit/FileSystem.h"

#include <functional>

#include <QDBusConnection>
#include <QObject>
#include <QUrl>

namespace ZephrimarkOffload {

/// The desktop's file manager. Main thread; nothing blocks.
class FileManager {
 public:
  /// Opens a folder given as a file URL in the desktop's way, such as QDesktopServices::openUrl.
  using OpenFolder = std::function<void(const QUrl&)>;

  /// The connection is to the session bus. `openFolder` stands in where nobody there shows files.
  FileManager(const QDBusConnection& session, OpenFolder openFolder);

  /// Shows the item, selected in its folder; where that is not offered, opens its folder. A
  /// relative path starts at the current folder. Whether there is such an item is left to the file
  /// manager.
  void reveal(const PlatformKit::Path& item);

 private:
  QDBusConnection session_;
  OpenFolder openFolder_;
  QObject pending_;  // owns the calls that are not answered yet
};

}  // namespace ZephrimarkOffload
