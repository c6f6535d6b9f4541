#include "Updates/Version.h"

#include <tuple>

#include <QRegularExpression>
#include <QStringList>

namespace Updates {

std::optional<Version> Version::parse(const QString& text) {
  static const QRegularExpression form(QRegularExpression::anchoredPattern(
      "([0-9]{1,9}(?:\\.[0-9]{1,9}){0,7})(?:-(?=[.-]*[0-9A-Za-z])([0-9A-Za-z.-]{1,40}))?"));
  static const QRegularExpression run("[0-9]{1,18}|[A-Za-z]+");
  const QRegularExpressionMatch match = form.match(text);
  if (!match.hasMatch()) return std::nullopt;

  Version version;
  const QStringList numbers = match.captured(1).split('.');
  for (const QString& number : numbers) version.numbers_.push_back(number.toULongLong());
  while (!version.numbers_.empty() && version.numbers_.back() == 0) version.numbers_.pop_back();

  QRegularExpressionMatchIterator runs = run.globalMatch(match.captured(2));
  while (runs.hasNext()) {
    const QString part = runs.next().captured();
    bool isNumber = false;
    const qulonglong number = part.toULongLong(&isNumber);
    if (isNumber) {
      version.preRelease_.emplace_back(number);
    } else {
      version.preRelease_.emplace_back(part.toStdString());
    }
  }
  return version;
}

bool Version::isBefore(const Version& other) const {
  const bool isRelease = preRelease_.empty();
  const bool otherIsRelease = other.preRelease_.empty();
  return std::tie(numbers_, isRelease, preRelease_) <
         std::tie(other.numbers_, otherIsRelease, other.preRelease_);
}

}  // namespace Updates
