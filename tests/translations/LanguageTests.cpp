#include "OffloadKit/Proof/OffloadReport.h"
#include "OffloadKit/Wording/Format.h"
#include "OffloadKit/Wording/ProgressTexts.h"
#include "OffloadKit/Wording/ResultTexts.h"
#include "TextKit/ByteCount.h"
#include "TextKit/Translation.h"
#include "tests/Because.h"
#include "tests/translations/InLanguage.h"

#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace {

using TextKit::byteCountText;
using TextKit::filled;
using TextKit::shownByteCount;
using TextKit::valuesIn;
using Words = std::vector<std::string>;

OffloadKit::OffloadResult resultOf(std::size_t failed) {
  OffloadKit::OffloadResult result;
  result.plan.sourceName = "A001";
  result.plan.destinations = {"/one"};
  for (std::size_t i = 0; i < failed; ++i) {
    OffloadKit::OffloadedFile& file = result.files.emplace_back();
    file.file = {"clip", 1'234'567, {}, std::nullopt};
    file.outcomes = {OffloadKit::OffloadedFile::Outcome::failed(because("The drive is full"))};
  }
  result.destinationErrors.emplace(0, because("The drive is full"));
  return result;
}

TEST(Translation, fillsPlacesOnceAndFindsTheirValuesAgain) {
  EXPECT_EQ(filled("%2 of %1, 5 %, %9%", {"%2", "b"}), "b of %2, 5 %, %9%");
  EXPECT_EQ(filled("%", {"a"}), "%");
  EXPECT_EQ(valuesIn("Could not open /dev/a: b: No", "Could not open %1: %2"),
            (Words{"/dev/a", "b: No"}));
  EXPECT_EQ(valuesIn("A001 is full.", "%1 is full."), (Words{"A001"}));
  EXPECT_EQ(valuesIn("fixed", "fixed"), Words{});
  for (const char* other : {"A001 is full", "A001 is full..", " is", ""}) {
    EXPECT_EQ(valuesIn(other, "%1 is full."), std::nullopt) << other;
  }
}

TEST(Translation, theEnvironmentChoosesTheLanguage) {
  struct Case {
    const char *languages, *all, *messages, *lang;
    const char* chosen;
  };
  const Case cases[] = {
      {"", "", "", "", "en"},
      {"", "", "", "de_DE.UTF-8", "de"},
      {"", "", "de_AT@euro", "en_US.UTF-8", "de"},
      {"", "fr_FR", "de_DE", "de_DE", "en"},
      {"de", "", "", "en_US.UTF-8", "de"},
      {"fr:de:en", "C.UTF-8", "", "", "de"},
      {"en_GB:de", "", "", "de_DE.UTF-8", "en"},
      {"de", "C", "", "", "en"},
      {"de", "", "", "POSIX", "en"},
      {"../de", "", "", "..", "en"},
  };
  for (const Case& one : cases) {
    setenv("LANGUAGE", one.languages, 1);
    setenv("LC_ALL", one.all, 1);
    setenv("LC_MESSAGES", one.messages, 1);
    setenv("LANG", one.lang, 1);
    EXPECT_EQ(Translations::languageOfUser(), one.chosen) << one.languages << "|" << one.lang;
  }
}

std::string copyingTo(std::size_t drives) {
  OffloadKit::OffloadProgress progress;
  progress.phase = OffloadKit::OffloadProgress::Phase::copying;
  return OffloadKit::ProgressTexts::phase(progress, drives);
}

TEST(Translation, bothLanguagesHaveTheirPluralsAndFigures) {
  const auto said = [] {
    return Words{copyingTo(0),
                 copyingTo(1),
                 copyingTo(2),
                 OffloadKit::Format::grouped(1'234'567),
                 shownByteCount(0),
                 shownByteCount(1),
                 shownByteCount(2),
                 shownByteCount(12'340'000'000),
                 OffloadKit::Format::shownDuration(125),
                 OffloadKit::ResultTexts::sentence(resultOf(1)),
                 OffloadKit::ResultTexts::sentence(resultOf(2))};
  };
  const Words english = {"Copying to 0 drives and checking each copy",
                         "Copying to 1 drive and checking each copy",
                         "Copying to 2 drives and checking each copy",
                         "1,234,567",
                         "Zero KB",
                         "1 byte",
                         "2 bytes",
                         "12.34 GB",
                         "2 min 5 s",
                         "1 file didn't make it onto every drive. Don't erase the card yet.",
                         "2 files didn't make it onto every drive. Don't erase the card yet."};
  EXPECT_EQ(said(), english);
  {
    const InLanguage german("de");
    const Words expected = {
        "Kopiert auf 0 Laufwerke und prüft jede Kopie",
        "Kopiert auf 1 Laufwerk und prüft jede Kopie",
        "Kopiert auf 2 Laufwerke und prüft jede Kopie",
        "1.234.567",
        "0\u00A0KB",
        "1\u00A0Byte",
        "2\u00A0Bytes",
        "12,34\u00A0GB",
        "2\u00A0min 5\u00A0s",
        "1 Datei ist nicht auf jedem Laufwerk angekommen. Löschen Sie die Karte noch nicht.",
        "2 Dateien sind nicht auf jedem Laufwerk angekommen. Löschen Sie die Karte noch nicht."};
    EXPECT_EQ(said(), expected);
    EXPECT_EQ(byteCountText(12'340'000'000), "12.34 GB");
  }
  EXPECT_EQ(said(), english);
}

TEST(Translation, reportsStayAsTheyAre) {
  const auto english = OffloadKit::OffloadReport::html(resultOf(2), 0);
  const InLanguage german("de");
  EXPECT_EQ(OffloadKit::OffloadReport::html(resultOf(2), 0), english);
}

}  // namespace
