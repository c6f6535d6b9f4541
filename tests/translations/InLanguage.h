#pragma once

#include "Translations/Language.h"

#include <string>

/// Everything is said in this language while it lives, then in English again.
class InLanguage {
 public:
  explicit InLanguage(const std::string& language) { Translations::useLanguage(language); }
  ~InLanguage() { Translations::useLanguage("en"); }
  InLanguage(const InLanguage&) = delete;
  InLanguage& operator=(const InLanguage&) = delete;
};
