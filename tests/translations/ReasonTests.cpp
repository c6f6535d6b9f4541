#include "OffloadKit/Records/OffloadError.h"
#include "OffloadKit/Wording/ShownReason.h"
#include "tests/translations/InLanguage.h"

#include <cerrno>
#include <string>
#include <utility>

#include <gtest/gtest.h>

namespace {

using OffloadKit::OffloadError;
using OffloadKit::Reason;
using OffloadKit::shown;
using Kind = Reason::Kind;

std::size_t placesOf(std::string_view name, const std::string& sentence) {
  std::size_t count = 0;
  for (std::size_t at = 0; (at = sentence.find(name, at)) != std::string::npos; ++at) ++count;
  return count;
}

TEST(Reasons, everyKindIsTranslatedAndKeepsWhatItTook) {
  const InLanguage german("de");
  for (int number = 0; number < static_cast<int>(Kind::about); ++number) {
    const auto kind = static_cast<Kind>(number);
    const Reason reason(kind, std::vector<Reason::Argument>(Reason::takes(kind), "A %1"));
    EXPECT_NE(shown(reason), reason.english());
    EXPECT_EQ(placesOf("A %1", shown(reason)), Reason::takes(kind)) << reason.english();
  }
}

TEST(Reasons, translateWhatLiesBehindAndLeaveNamesAlone) {
  const auto unread = [](const Reason& reason) {
    return OffloadError::sourceUnreadable(reason).reason();
  };
  struct Case {
    Reason reason;
    const char *english, *german;
  };
  const Case cases[] = {
      {unread(Reason::about("CLIPS/a: b.MOV", Reason::ofSystem(EIO))),
       "The card couldn't be read: CLIPS/a: b.MOV: Input/output error",
       "Die Karte konnte nicht gelesen werden: CLIPS/a: b.MOV: Eingabe-/Ausgabefehler"},
      {unread(Reason(Kind::changedSize, {"The drive is full"})),
       "The card couldn't be read: The drive is full changed size while it was being read",
       "Die Karte konnte nicht gelesen werden: The drive is full hat beim Lesen die Größe "
       "geändert"},
      {{Kind::cannotOpen, {"/dev/sdb"}, Reason::ofSystem(EACCES)},
       "Could not open /dev/sdb: Permission denied",
       "/dev/sdb konnte nicht geöffnet werden: Keine Berechtigung"},
      {OffloadError::cardImageUnavailable(Reason(Kind::mayNotRead, {"/dev/sdb"})).reason(),
       "The card couldn't be opened for the card image: Authorization to read /dev/sdb was "
       "denied. Turn off the card image to offload without it.",
       "Die Karte konnte für das Kartenabbild nicht geöffnet werden: Die Berechtigung, /dev/sdb "
       "zu lesen, wurde verweigert. Schalten Sie das Kartenabbild aus, um ohne es zu sichern."},
      {OffloadError::notEnoughSpace("T7 %3", 64'310'000'000, 51'200'000'000).reason(),
       "T7 %3 needs 64.31 GB free but has 51.2 GB.",
       "T7 %3 braucht 64,31\u00A0GB freien Platz, hat aber nur 51,2\u00A0GB."},
      {Reason::fromOutside("std::bad_alloc"), "std::bad_alloc", "std::bad_alloc"},
      {Reason::fromOutside("Permission denied"), "Permission denied", "Keine Berechtigung"},
      {Reason::fromOutside(""), "", ""},
  };
  for (const auto& [reason, english, german] : cases) {
    EXPECT_EQ(shown(reason), english);
    const InLanguage language("de");
    EXPECT_EQ(shown(reason), german);
    EXPECT_EQ(reason.english(), english);
  }
}

TEST(Reasons, knowWhatDrivesAndCardsAnswer) {
  const InLanguage german("de");
  for (const int error :
       {EPERM,  ENOENT,   EIO,    ENXIO,  EACCES,    EBUSY,   EEXIST,       ENODEV, ENOTDIR,
        EISDIR, EINVAL,   EMFILE, EFBIG,  ENOSPC,    EROFS,   ENAMETOOLONG, ELOOP,  ENODATA,
        EILSEQ, ENOTCONN, ESTALE, EDQUOT, ENOMEDIUM, EUCLEAN, ETIMEDOUT,    ENOMEM}) {
    for (const Reason& reason : {Reason::ofDrive(error), Reason::ofSystem(error)}) {
      if (reason == Reason::ofSystem(ENOSPC)) continue;
      EXPECT_NE(shown(reason), reason.english()) << error;
    }
  }
}

}  // namespace
