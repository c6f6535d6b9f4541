#pragma once

#include <string>

namespace Translations {

/// The language that the environment asks for, such as "de": the first of LANGUAGE that there are
/// texts in, else what LC_ALL, LC_MESSAGES or LANG say; "en" when they want another one, the "C"
/// locale or nothing.
std::string languageOfUser();

/// Whether there are texts in it; always in English.
bool isKnown(const std::string& language);

/// From now on every text is in that language, in Qt's own dialogs too when a QCoreApplication is
/// there; call it again once there is one. An unknown language is English. Main thread, before
/// others start.
void useLanguage(const std::string& language);

}  // namespace Translations
