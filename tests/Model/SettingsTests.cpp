#include "PlatformKit/Testing/TempFolder.h"
#include "ZephrimarkOffload/Model/Settings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ZephrimarkOffload {
namespace {

using PlatformKit::Path;
using PlatformKit::Testing::pattern;
using PlatformKit::Testing::writeFile;
using ::testing::ElementsAre;

class SettingsTests : public ::testing::Test {
 protected:
  Choices loadedFrom(const std::string& content) {
    writeFile(path_, content);
    return Settings(QString::fromStdString(path_.native())).load();
  }
  Settings settings() { return Settings(QString::fromStdString(path_.native())); }

  PlatformKit::Testing::TempFolder folder_;
  const Path path_ = folder_.path() / "settings.ini";
};

TEST_F(SettingsTests, AnyContentGivesUsableChoices) {
  const Choices defaults;
  EXPECT_EQ(settings().load(), defaults);
  const std::string damaged[] = {
      "",
      "[General",
      "\xff\xfe\x00garbage",
      pattern(100'000),
      "[General]\nVerifySource=maybe\nEjectWhenDone=1\nSaveCardImage=@Variant(\\0\\0)\n",
      "[General]\nAlgorithm=XXH64\nVerifySource=\nPreset=a, b\n",
      "[General]\nDestinations=relative, , file:relative\n",
      // Text that Qt's own reader takes for a list of four milliards of texts.
      "[General]\nProject=\nAlgorithm=@Variant(\\0\\0\\0\\t\\xff\\xff\\xff\\xff)\n",
      "[Other]\nAlgorithm=md5\n",
      "[General]\nDestinations=@Invalid()\nAlgorithm=@ByteArray(md5)\n",
  };
  for (const std::string& content : damaged) {
    EXPECT_EQ(loadedFrom(content), defaults) << content.substr(0, 100);
  }
  EXPECT_FALSE(loadedFrom("[General]\nVerifySource=false\n").verifySource);
  EXPECT_EQ(loadedFrom("[General]\nAlgorithm=sha256\n").algorithm, HashKit::HashAlgorithm::sha256);
  EXPECT_THAT(loadedFrom("[General]\nDestinations=/one\n").destinations, ElementsAre("/one"));

  std::filesystem::remove(path_);
  std::filesystem::create_directory(path_);
  EXPECT_EQ(settings().load(), defaults);
  Settings unwritable = settings();
  unwritable.save(defaults);
}

TEST_F(SettingsTests, EveryPathComesBackAsItWas) {
  Choices choices;
  choices.destinations = {"/media/Ärger", "/media/bad\xff\x01name", "/media/a, b", "/a\"\\;b",
                          "/%41",         "/media/line\nbreak",     "/ "};
  choices.preset.templateText = "{date}, \"{card}\"\\%41";
  Settings writer = settings();
  writer.save(choices);
  EXPECT_EQ(settings().load(), choices);
}

TEST_F(SettingsTests, LaunchOptionsComeFromArgumentsOrTheFile) {
  const auto none = settings().launchOptions({"-ZMSource"});
  EXPECT_FALSE(none.source || none.destinations || none.autoStart);

  writeFile(path_, "[General]\nZMSource=/saved\nZMAutoStart=true\n");
  const auto options = settings().launchOptions(
      {"-platform", "xcb", "-ZMDestinations", "::/a b::/c:", "-ZMAutoStart", "NO"});
  EXPECT_EQ(options.source, "/saved");
  EXPECT_THAT(*options.destinations, ElementsAre("/a b", "/c"));
  EXPECT_FALSE(options.autoStart);
  EXPECT_TRUE(settings().launchOptions({"-ZMSource", "/x", "-ZMAutoStart", "YES"}).autoStart);
}

TEST_F(SettingsTests, TheWindowsSizeIsASizeOrNone) {
  Settings writer = settings();
  EXPECT_FALSE(writer.windowSize());
  writer.saveWindowSize(900, 700);
  EXPECT_EQ(settings().windowSize(), std::pair(900, 700));
  for (const char* bad : {"WindowWidth=-1", "WindowWidth=wide", "WindowWidth=9999999999"}) {
    writeFile(path_, std::string("[General]\nWindowHeight=700\n") + bad + "\n");
    EXPECT_FALSE(settings().windowSize()) << bad;
  }
}

}  // namespace
}  // namespace ZephrimarkOffload
