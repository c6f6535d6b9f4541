#include "ZephrimarkOffload/Model/SettingsFile.h"

#include <QByteArray>
#include <QIODevice>
#include <QStringList>
#include <QVariant>

namespace ZephrimarkOffload {
namespace {

constexpr qint64 kLargest = qint64{1} << 20;  // bytes

char meantBy(char escape) {
  switch (escape) {
    case 'n':
      return '\n';
    case 'r':
      return '\r';
    case '0':
      return '\0';
    default:
      return escape;
  }
}

/// Collects the texts of one value. Spaces around a text count only within quotation marks.
class Texts {
 public:
  void add(char c, bool isQuoted) {
    if (current_.isEmpty() && c == ' ' && !isQuoted) return;
    current_ += c;
    if (c != ' ' || isQuoted) length_ = current_.size();
  }
  void end() {
    list_ += QString::fromUtf8(current_.left(length_));
    current_.clear();
    length_ = 0;
  }
  [[nodiscard]] const QStringList& list() const { return list_; }

 private:
  QStringList list_;
  QByteArray current_;
  qsizetype length_ = 0;  // without spaces at the end
};

QVariant valueOf(const QByteArray& text) {
  Texts texts;
  bool isQuoted = false;
  for (qsizetype i = 0; i < text.size(); ++i) {
    if (text[i] == '"') {
      isQuoted = !isQuoted;
    } else if (text[i] == ',' && !isQuoted) {
      texts.end();
    } else if (text[i] == '\\' && i + 1 < text.size()) {
      texts.add(meantBy(text[++i]), true);
    } else {
      texts.add(text[i], isQuoted);
    }
  }
  texts.end();
  return texts.list().size() == 1 ? QVariant(texts.list().front()) : QVariant(texts.list());
}

QByteArray quoted(const QString& text) {
  QByteArray result = "\"";
  for (const char c : text.toUtf8()) {
    if (c == '\n') {
      result += "\\n";
    } else if (c == '\r') {
      result += "\\r";
    } else if (c == '\0') {
      result += "\\0";
    } else {
      if (c == '"' || c == '\\') result += '\\';
      result += c;
    }
  }
  return result + '"';
}

QByteArray textOf(const QVariant& value) {
  if (value.typeId() != QMetaType::QStringList) return quoted(value.toString());
  QByteArrayList texts;
  for (const QString& text : value.toStringList()) texts += quoted(text);
  return texts.join(", ");
}

bool readSettings(QIODevice& device, QSettings::SettingsMap& values) {
  bool isGeneral = true;
  for (const QByteArray& whole : device.read(kLargest).split('\n')) {
    const QByteArray line = whole.trimmed();
    const qsizetype equals = line.indexOf('=');
    if (line.startsWith('[')) {
      isGeneral = line == "[General]";
    } else if (isGeneral && equals > 0 && !line.startsWith(';')) {
      values[QString::fromUtf8(line.left(equals).trimmed())] = valueOf(line.mid(equals + 1));
    }
  }
  return true;
}

bool writeSettings(QIODevice& device, const QSettings::SettingsMap& values) {
  QByteArray content = "[General]\n";
  for (auto value = values.begin(); value != values.end(); ++value) {
    const QByteArray text = textOf(*value);
    // An empty list has no text, and is the same as none.
    if (!text.isEmpty()) content += value.key().toUtf8() + '=' + text + '\n';
  }
  return device.write(content) == content.size();
}

}  // namespace

QSettings::Format settingsFormat() {
  static const QSettings::Format format =
      QSettings::registerFormat("ini", readSettings, writeSettings, Qt::CaseSensitive);
  return format;
}

}  // namespace ZephrimarkOffload
