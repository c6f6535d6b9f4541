#include "ZephrimarkOffload/Model/Settings.h"

#include "PlatformKit/Testing/TempFolder.h"
#include "TextKit/Unicode.h"
#include "fuzz/Input.h"

#include <filesystem>
#include <string>

using ZephrimarkOffload::Settings;

namespace {

// Never the same twice, since Qt remembers the content of a file by its path.
class File {
 public:
  File() {
    static const PlatformKit::Testing::TempFolder folder;
    static int number = 0;
    path_ = folder.path() / (std::to_string(++number) + ".ini");
  }
  ~File() {
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
  }
  File(const File&) = delete;
  File& operator=(const File&) = delete;

  void write(std::string_view content) const { PlatformKit::Testing::writeFile(path_, content); }
  [[nodiscard]] Settings settings() const { return Settings(QString::fromStdString(path_)); }

 private:
  PlatformKit::Path path_;
};

void checkChoices(const ZephrimarkOffload::Choices& choices) {
  for (const PlatformKit::Path& destination : choices.destinations) {
    Fuzz::require(destination.is_absolute(), "a destination is absolute");
    Fuzz::require(destination.native().find('\0') == std::string::npos, "it can be a path");
  }
  for (const std::string& text : {choices.project, choices.preset.templateText}) {
    Fuzz::require(TextKit::validUtf8(text) == text, "texts are UTF-8");
  }
  const File copy;
  copy.settings().save(choices);
  Fuzz::require(copy.settings().load() == choices, "what is saved is loaded");
}

void checkOptions(const ZephrimarkOffload::LaunchOptions& options) {
  Fuzz::require(!options.source || options.source->is_absolute(), "the source is absolute");
  if (!options.destinations) return;
  for (const PlatformKit::Path& destination : *options.destinations) {
    Fuzz::require(destination.is_absolute(), "destinations are absolute");
  }
}

}  // namespace

/// Input: the file of settings; its parts between zero bytes are also the program's arguments.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // Qt misses an event loop here and says so, which does not matter.
  static const auto before =
      qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
  static_cast<void>(before);
  const auto text = Fuzz::textOf(data, size);
  const File file;
  file.write(text);
  const Settings settings = file.settings();
  checkChoices(settings.load());
  const auto parts = Fuzz::partsOf(text, 20);
  checkOptions(settings.launchOptions({parts.begin(), parts.end()}));
  if (const auto window = settings.windowSize()) {
    Fuzz::require(window->first > 0 && window->first <= 32767 && window->second > 0 &&
                      window->second <= 32767,
                  "a window has a possible size");
  }
  return 0;
}
