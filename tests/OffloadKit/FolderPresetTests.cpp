#include "OffloadKit/Card/CameraName.h"
#include "OffloadKit/Records/FolderPreset.h"
#include "PlatformKit/Linux/LinuxFileSystem.h"
#include "PlatformKit/Testing/TempFolder.h"

#include <gtest/gtest.h>

namespace OffloadKit {
namespace {

using PlatformKit::Testing::TempFolder;
using PlatformKit::Testing::writeFile;

FolderPreset::Context context() {
  // 7 October 2026, 14:32 local time.
  std::tm parts{};
  parts.tm_year = 126;
  parts.tm_mon = 9;
  parts.tm_mday = 7;
  parts.tm_hour = 14;
  parts.tm_min = 32;
  parts.tm_isdst = -1;
  return {PlatformKit::Date(std::chrono::seconds(std::mktime(&parts))), "EOS_DIGITAL", "Canon", ""};
}

TEST(FolderPreset, resolvesTemplatesToSafeRelativePaths) {
  const std::pair<const char*, const char*> cases[] = {
      {"{date}/{card}", "2026-10-07/EOS_DIGITAL"},
      {"{date}_{project}/{camera}", "2026-10-07_Untitled/Canon"},
      {"{project}/{date}/{card}", "Untitled/2026-10-07/EOS_DIGITAL"},
      {"/{date}//{card}/", "2026-10-07/EOS_DIGITAL"},
      {"../{time}.", "1432"},
      {"a/../../etc", "a/etc"},
      {"/ . /..", "2026-10-07"},
      {"", "2026-10-07"},
      {"{Date} {year}", "{Date} {year}"},
      {"a:b\\c/\x01", "a-b-c/-"},
      {"{card", "{card"},
  };
  for (const auto& [text, path] : cases)
    EXPECT_EQ(FolderPreset{text}.resolve(context()), path) << text;
}

TEST(FolderPreset, keepsValuesFromMakingFoldersOfTheirOwn) {
  auto facts = context();
  facts.card = "A/B";
  facts.project = "  Client: Smith/Jones.";
  EXPECT_EQ(FolderPreset{"{project}/{card}"}.resolve(facts), "Client- Smith-Jones/A-B");
  facts.camera = "";
  EXPECT_EQ(FolderPreset{"{date}/{camera}/x"}.resolve(facts), "2026-10-07/x");
  facts.card = "..";
  EXPECT_EQ(FolderPreset{"{card}/{date}"}.resolve(facts), "2026-10-07");
}

TEST(FolderPreset, cleansTextForUseAsOneComponent) {
  EXPECT_EQ(FolderPreset::clean("a::b*?\"<>|"), "a--b------");
  EXPECT_EQ(FolderPreset::clean("\u2003. a.b .\u00A0"), "a.b");
  EXPECT_EQ(FolderPreset::clean("line\nbreak\u200Bzero"), "line-break-zero");
  EXPECT_EQ(FolderPreset::clean("Zo\xC3\xAB \xF0\x9F\x8E\xA5"), "Zo\xC3\xAB \xF0\x9F\x8E\xA5");
  EXPECT_EQ(FolderPreset::clean("bad\xFFutf"), "bad-utf");
  EXPECT_EQ(FolderPreset::clean(" .. "), "");
}

TEST(FolderPreset, knowsCamerasByTheirFolders) {
  PlatformKit::LinuxFileSystem fileSystem;
  const std::pair<const char*, const char*> cards[] = {
      {"DCIM/100CANON/x", "Canon"},    {"DCIM/100canon/x", "Canon"},
      {"DCIM/100EOS5D/x", "Canon"},    {"DCIM/101MSDCF/x", "Sony"},
      {"DCIM/DJI_001/x", "DJI"},       {"DCIM/100MEDIA/x", "DJI"},
      {"DCIM/100_FUJI/x", "Fujifilm"}, {"DCIM/100OLYMP/x", "OM System"},
      {"PRIVATE/M4ROOT/x", "Sony"},    {"XDROOT/x", "Sony"},
      {"PRIVATE/AVCHD/x", "AVCHD"},    {"CONTENTS/CLIPS001/x", "Canon"},
      {"DCIM/MISC/x", "Camera"},       {"other/x", "Camera"},
  };
  for (const auto& [file, brand] : cards) {
    const TempFolder card;
    writeFile(card.path() / file, "");
    EXPECT_EQ(cameraName(fileSystem, card.path()), brand) << file;
  }
  const TempFolder mixed;
  writeFile(mixed.path() / "DCIM/MISC/x", "");
  writeFile(mixed.path() / "PRIVATE/M4ROOT/x", "");
  EXPECT_EQ(cameraName(fileSystem, mixed.path()), "Sony");
}

}  // namespace
}  // namespace OffloadKit
