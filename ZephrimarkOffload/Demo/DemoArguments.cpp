#include "ZephrimarkOffload/Demo/DemoArguments.h"

#include "Translations/Language.h"

#include <QRegularExpression>

namespace ZephrimarkOffload::Demo {
namespace {

std::string listOfScenes() {
  std::string list;
  for (const std::string& name : sceneNames()) list += (list.empty() ? "" : ", ") + name;
  return list;
}

Scene sceneOf(const std::string& name) {
  const auto scene = sceneNamed(name);
  if (scene) return *scene;
  throw DemoArguments::Error("There is no scene \"" + name + "\". There are: " + listOfScenes() +
                             ".");
}

QSize sizeOf(const std::string& text) {
  static const QRegularExpression pattern(QStringLiteral("^(\\d{1,4})x(\\d{1,4})$"));
  const auto match = pattern.match(QString::fromStdString(text));
  const QSize size(match.captured(1).toInt(), match.captured(2).toInt());
  if (match.hasMatch() && !size.isEmpty()) return size;
  throw DemoArguments::Error("\"" + text + "\" is no size such as 820x840.");
}

std::string languageOf(const std::string& code) {
  if (Translations::isKnown(code)) return code;
  throw DemoArguments::Error("There are no texts in the language \"" + code + "\".");
}

}  // namespace

DemoArguments DemoArguments::parse(const std::vector<std::string>& arguments) {
  DemoArguments parsed;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& option = arguments[i];
    const auto value = [&] {
      if (i + 1 == arguments.size()) throw Error(option + " needs a value.");
      return arguments[++i];
    };
    if (option == "--help" || option == "-h")
      parsed.wantsHelp = true;
    else if (option == "--scene")
      parsed.scene = sceneOf(value());
    else if (option == "--dark" || option == "--light")
      parsed.dark = option == "--dark";
    else if (option == "--language")
      parsed.language = languageOf(value());
    else if (option == "--screenshot")
      parsed.screenshot = QString::fromStdString(value());
    else if (option == "--size")
      parsed.size = sizeOf(value());
    else
      throw Error("There is no option \"" + option + "\"; --help lists them.");
  }
  if (parsed.size && !parsed.screenshot) throw Error("--size needs --screenshot.");
  return parsed;
}

std::string DemoArguments::help() {
  return "Usage: zephrimark-offload-demo [--scene NAME] [--dark|--light] [--language CODE]\n"
         "                               [--screenshot FILE [--size WxH]]\n"
         "Opens the window of Zephrimark Offload on made-up cards and drives. Nothing is copied.\n"
         "Without --scene you can offload one of two cards, which takes about 20 seconds.\n"
         "--screenshot saves a picture of the window and ends.\n"
         "Scenes: " +
         listOfScenes() + ".\n";
}

}  // namespace ZephrimarkOffload::Demo
