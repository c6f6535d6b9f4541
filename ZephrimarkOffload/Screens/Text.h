#pragma once

#include "PlatformKit/FileSystem.h"
#include "TextKit/Unicode.h"

#include <string_view>
#include <vector>

#include <QString>
#include <QStringList>
#include <QUrl>

namespace ZephrimarkOffload {

/// Bytes of a name as one line of a screen: what is no text, and what would make more lines of it
/// or steer something, is replaced (see TextKit::singleLineText). All functions here any thread.
inline QString lineText(std::string_view bytes) {
  return QString::fromStdString(TextKit::singleLineText(bytes));
}

/// The same for each of several.
inline QStringList lineTexts(const std::vector<std::string>& lines) {
  QStringList texts;
  for (const std::string& line : lines) texts.push_back(lineText(line));
  return texts;
}

/// Bytes that are kept to be compared or given back, not to be read.
inline QByteArray keyOf(const PlatformKit::Path& path) {
  return QByteArray::fromStdString(path.native());
}

/// The path of a file URL; empty for any other.
PlatformKit::Path pathOf(const QUrl& url);

/// The file URL of a path, whatever its bytes.
QUrl urlOf(const PlatformKit::Path& path);

}  // namespace ZephrimarkOffload
