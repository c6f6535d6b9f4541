// What the engine keeps in English is known where it is shown.

#include "OffloadKit/Records/OffloadError.h"
#include "OffloadKit/Wording/ErrorSentences.h"
#include "OffloadKit/Wording/ShownReason.h"
#include "PlatformKit/FileSystem.h"
#include "tests/translations/InLanguage.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <string>

#include <gtest/gtest.h>

namespace {

using OffloadKit::OffloadError;
using OffloadKit::shownReason;
namespace fs = std::filesystem;

// Sources whose texts are records, or are translated where they are.
const std::set<std::string> kNoReasons = {
    "Format.cpp",      "FolderPreset.cpp", "MHL.cpp",           "MHLDocuments.cpp",
    "MHLParsers.cpp",  "OffloadError.cpp", "OffloadReport.cpp", "ProgressTexts.cpp",
    "ResultTexts.cpp", "ShownReason.cpp"};

// What only a fault of the program or of a library would say.
const std::set<std::string> kInternal = {"OpenSSL could not compute a SHA-512 digest.",
                                         "the chunk size is 0"};

std::string sourceOf(const fs::path& file) {
  std::ifstream stream(file);
  std::string text{std::istreambuf_iterator<char>(stream), {}};
  text = std::regex_replace(text, std::regex("//[^\n]*|#[^\n]*"), "");
  return std::regex_replace(text, std::regex("\"\\s*\n\\s*\""), "");
}

// The sentences in the sources of a folder, each as it would be kept.
std::set<std::string> sentencesIn(const fs::path& folder) {
  static const std::regex literal("\"((?:[^\"\\\\\n]|\\\\.)*)\"");
  static const std::regex words("[A-Za-z'%1]+ [a-z%].*");
  std::set<std::string> found;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    const fs::path file = entry.path();
    if (file.extension() != ".cpp" || kNoReasons.contains(file.filename().string())) continue;
    const std::string source = sourceOf(file);
    for (std::sregex_iterator match(source.begin(), source.end(), literal), end; match != end;
         ++match) {
      std::string text = (*match)[1];
      // The rest of a sentence about a file.
      if (text.starts_with(' ')) text = "A.MOV" + text;
      if (text.ends_with(": ")) text += "A.MOV: Input/output error";
      if (std::regex_match(text, words) && !kInternal.contains(text)) found.insert(text);
    }
  }
  return found;
}

TEST(ShownReason, knowsEverySentenceOfTheEngineAndTheDevices) {
  const InLanguage german("de");
  std::size_t count = 0;
  for (const char* folder : {"OffloadKit", "DeviceKit"}) {
    for (const std::string& sentence : sentencesIn(fs::path(ZEPHRIMARK_SOURCES) / folder)) {
      EXPECT_NE(shownReason(sentence), sentence) << "Add it to kPatterns and translate it.";
      ++count;
    }
  }
  EXPECT_GT(count, 20U);
}

TEST(ShownReason, translatesWhatIsInsideOfASentenceAndLeavesNamesAlone) {
  const std::pair<const char*, const char*> cases[] = {
      {"The drive is full", "Das Laufwerk ist voll"},
      {"The card couldn't be read: CLIPS/a: b.MOV: Input/output error",
       "Die Karte konnte nicht gelesen werden: CLIPS/a: b.MOV: Eingabe-/Ausgabefehler"},
      {"The card couldn't be read: The drive is full.mov changed size while it was being read",
       "Die Karte konnte nicht gelesen werden: The drive is full.mov hat beim Lesen die Größe "
       "geändert"},
      {"Could not open /dev/sdb: Permission denied",
       "/dev/sdb konnte nicht geöffnet werden: Keine Berechtigung"},
      {"EOS %2 is not mounted any more, so it was not ejected.",
       "EOS %2 ist nicht mehr eingehängt und wurde deshalb nicht ausgeworfen."},
      {"std::bad_alloc", "std::bad_alloc"},
      {"", ""},
  };
  for (const auto& [english, german] : cases) {
    EXPECT_EQ(shownReason(english), english);
    const InLanguage language("de");
    EXPECT_EQ(shownReason(english), german);
  }
}

TEST(ShownReason, knowsWhatDrivesAndCardsAnswer) {
  const InLanguage german("de");
  for (const int error :
       {EPERM,  ENOENT,   EIO,    ENXIO,  EACCES,    EBUSY,   EEXIST,       ENODEV, ENOTDIR,
        EISDIR, EINVAL,   EMFILE, EFBIG,  ENOSPC,    EROFS,   ENAMETOOLONG, ELOOP,  ENODATA,
        EILSEQ, ENOTCONN, ESTALE, EDQUOT, ENOMEDIUM, EUCLEAN, ETIMEDOUT,    ENOMEM}) {
    for (const std::string& text : {OffloadKit::describe(error), OffloadKit::systemText(error)}) {
      if (error == ENOSPC && text == OffloadKit::systemText(error)) continue;
      EXPECT_NE(shownReason(text), text) << error;
    }
  }
}

TEST(OffloadErrors, areKeptInEnglishAndShownInTheUsersLanguage) {
  const InLanguage german("de");
  const auto error = OffloadError::notEnoughSpace("T7 %3", 64'310'000'000, 51'200'000'000);
  EXPECT_EQ(error.errorDescription(), "T7 %3 needs 64.31 GB free but has 51.2 GB.");
  EXPECT_EQ(error.shownDescription(),
            "T7 %3 braucht 64,31\u00A0GB freien Platz, hat aber nur 51,2\u00A0GB.");
  EXPECT_EQ(
      OffloadError::cardImageUnavailable("Authorization to read /dev/sdb was denied.")
          .shownDescription(),
      "Die Karte konnte für das Kartenabbild nicht geöffnet werden: Die Berechtigung, /dev/sdb "
      "zu lesen, wurde verweigert. Schalten Sie das Kartenabbild aus, um ohne es zu sichern.");
  EXPECT_EQ(OffloadError::sourceUnreadable("couldn't list its files").shownDescription(),
            "Die Karte konnte nicht gelesen werden: Ihre Dateien konnten nicht aufgelistet werden");
}

}  // namespace
