#include "Translations/Language.h"

#include "TextKit/Translation.h"

#include <memory>
#include <vector>

#include <QCoreApplication>
#include <QFile>
#include <QLibraryInfo>
#include <QStringList>
#include <QTranslator>

namespace Translations {
namespace {

constexpr const char* kEnglish = "en";

QString fileOf(const QString& language) {
  return QStringLiteral(":/translations/zephrimark_%1.qm").arg(language);
}

/// The texts of one language: ours, and what Qt's own dialogs say where that is installed.
class Texts final : public TextKit::Translator {
 public:
  explicit Texts(const QString& language) {
    static_cast<void>(translators_[0].load(fileOf(language)));
    const QString folder = QLibraryInfo::path(QLibraryInfo::TranslationsPath);
    // Ignored on purpose when they are not there: those dialogs are in English then.
    static_cast<void>(translators_[1].load(QStringLiteral("qtbase_") + language, folder));
    static_cast<void>(translators_[2].load(QStringLiteral("qtdeclarative_") + language, folder));
  }

  [[nodiscard]] std::string find(const char* context, const char* source, const char* comment,
                                 int count) const override {
    return translators_[0].translate(context, source, comment, count).toStdString();
  }

  void installIn(QCoreApplication& /*application*/) {
    // The last one is asked first.
    for (int i = 2; i >= 0; --i) QCoreApplication::installTranslator(&translators_[i]);
  }

 private:
  QTranslator translators_[3];
};

// The codes that a variable such as "de_AT.UTF-8:fr" names, each followed by its language alone.
QStringList codesIn(const QString& variable) {
  QStringList codes;
  for (const QString& entry : variable.split(u':', Qt::SkipEmptyParts)) {
    const QString code = entry.section(u'.', 0, 0).section(u'@', 0, 0);
    codes << code << code.section(u'_', 0, 0);
  }
  return codes;
}

QString localeOfMessages() {
  for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    QString value = qEnvironmentVariable(variable);
    if (!value.isEmpty()) return value;
  }
  return {};
}

std::unique_ptr<Texts>& current() {
  // Never destroyed: threads that wait for a dead volume can outlive the program's end.
  static auto& texts = *new std::unique_ptr<Texts>;
  return texts;
}

}  // namespace

bool isKnown(const std::string& language) {
  const QString code = QString::fromStdString(language);
  return language == kEnglish || (!code.contains(u'/') && QFile::exists(fileOf(code)));
}

std::string languageOfUser() {
  const QString locale = localeOfMessages();
  if (locale == u"C" || locale == u"POSIX") return kEnglish;
  for (const QString& code : codesIn(qEnvironmentVariable("LANGUAGE")) + codesIn(locale)) {
    if (isKnown(code.toStdString())) return code.toStdString();
  }
  return kEnglish;
}

void useLanguage(const std::string& language) {
  TextKit::setTranslator(nullptr);
  // A translator takes itself out of the application.
  current().reset();
  if (language == kEnglish || !isKnown(language)) return;
  current() = std::make_unique<Texts>(QString::fromStdString(language));
  TextKit::setTranslator(current().get());
  if (QCoreApplication* application = QCoreApplication::instance()) {
    current()->installIn(*application);
  }
}

}  // namespace Translations
