#include "ZephrimarkOffload/Model/Settings.h"

#include "TextKit/Unicode.h"
#include "ZephrimarkOffload/Model/SettingsFile.h"

#include <chrono>
#include <string_view>

#include <QByteArray>
#include <QDebug>
#include <QStringList>
#include <QVariant>

namespace ZephrimarkOffload {
namespace {

using PlatformKit::Path;

constexpr const char* kDestinations = "Destinations";
constexpr const char* kPreset = "Preset";
constexpr const char* kProject = "Project";
constexpr const char* kAlgorithm = "Algorithm";
constexpr const char* kVerifySource = "VerifySource";
constexpr const char* kEjectWhenDone = "EjectWhenDone";
constexpr const char* kSaveCardImage = "SaveCardImage";
constexpr const char* kWindowWidth = "WindowWidth";
constexpr const char* kWindowHeight = "WindowHeight";

// A path is bytes and a setting is text. One that is no text is kept as "file:" and its bytes in
// percent-encoding, which no absolute path can be mistaken for.
constexpr const char* kEncoded = "file:";

QString settingOf(const Path& path) {
  const std::string& bytes = path.native();
  if (TextKit::validUtf8(bytes) == bytes) return QString::fromStdString(bytes);
  const QByteArray raw(bytes.data(), static_cast<qsizetype>(bytes.size()));
  return kEncoded + QString::fromLatin1(raw.toPercentEncoding("/"));
}

std::optional<Path> pathOf(const QString& setting) {
  QByteArray bytes = setting.toUtf8();
  if (setting.startsWith(QLatin1String(kEncoded))) {
    bytes = QByteArray::fromPercentEncoding(bytes.mid(QByteArrayView(kEncoded).size()));
  }
  if (!bytes.startsWith('/') || bytes.contains('\0')) return std::nullopt;
  return normalized(bytes.toStdString());
}

Path absolute(std::string_view text) {
  std::error_code error;
  // Fails only where the folder that the program was started in is gone.
  const Path path = std::filesystem::absolute(text, error);
  return normalized(error ? Path(text) : path);
}

std::vector<Path> pathsBetweenColons(std::string_view text) {
  std::vector<Path> paths;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(':'), text.size());
    if (end > 0) paths.push_back(absolute(text.substr(0, end)));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return paths;
}

// Not at every letter that is typed.
constexpr std::chrono::milliseconds kSoon{300};

// What people write for "true" in launch options.
bool isYes(std::string_view text) {
  return text == "true" || text == "TRUE" || text == "yes" || text == "YES" || text == "1";
}

}  // namespace

Settings::Settings()
    : file_(settingsFormat(), QSettings::UserScope, "zephrimark", "zephrimark-offload") {
  file_.setFallbacksEnabled(false);
  prepare();
}

Settings::Settings(const QString& path) : file_(path, settingsFormat()) {
  prepare();
}

void Settings::prepare() {
  soon_.setSingleShot(true);
  soon_.setInterval(kSoon);
  soon_.callOnTimeout([this] { write(); });
}

std::optional<QString> Settings::text(const QString& key) const {
  const QVariant value = file_.value(key);
  // Text with commas that somebody wrote without quotation marks reads as a list.
  if (value.typeId() != QMetaType::QString) return std::nullopt;
  return value.toString();
}

std::optional<bool> Settings::flag(const QString& key) const {
  const QVariant value = file_.value(key);
  if (value.typeId() == QMetaType::Bool) return value.toBool();
  // Read from a file, every value is text; any text but "false" would convert to true.
  const auto written = text(key);
  if (written == "true") return true;
  if (written == "false") return false;
  return std::nullopt;
}

Choices Settings::load() const {
  Choices choices;
  for (const QString& setting : file_.value(kDestinations).toStringList()) {
    if (auto path = pathOf(setting)) choices.destinations.push_back(std::move(*path));
  }
  if (const auto preset = text(kPreset)) choices.preset.templateText = preset->toStdString();
  choices.project = text(kProject).value_or("").toStdString();
  choices.algorithm =
      HashKit::hashAlgorithmFromRawValue(text(kAlgorithm).value_or("").toStdString())
          .value_or(HashKit::HashAlgorithm::xxh64);
  choices.verifySource = flag(kVerifySource).value_or(true);
  choices.ejectWhenDone = flag(kEjectWhenDone).value_or(false);
  choices.saveCardImage = flag(kSaveCardImage).value_or(false);
  return choices;
}

Settings::~Settings() {
  if (soon_.isActive()) write();
}

void Settings::save(const Choices& choices) {
  QStringList destinations;
  for (const Path& path : choices.destinations) destinations.push_back(settingOf(path));
  file_.setValue(kDestinations, destinations);
  file_.setValue(kPreset, QString::fromStdString(choices.preset.templateText));
  file_.setValue(kProject, QString::fromStdString(choices.project));
  file_.setValue(kAlgorithm, QString::fromStdString(std::string(rawValue(choices.algorithm))));
  file_.setValue(kVerifySource, choices.verifySource);
  file_.setValue(kEjectWhenDone, choices.ejectWhenDone);
  file_.setValue(kSaveCardImage, choices.saveCardImage);
  soon_.start();
}

void Settings::write() {
  file_.sync();
  if (file_.status() == QSettings::NoError || warned_) return;
  warned_ = true;
  qWarning().noquote() << "The settings could not be saved in" << file_.fileName();
}

LaunchOptions Settings::launchOptions(const std::vector<std::string>& arguments) const {
  auto source = text("ZMSource").value_or("").toStdString();
  auto destinations = text("ZMDestinations").value_or("").toStdString();
  auto autoStart = text("ZMAutoStart").value_or("").toStdString();
  for (std::size_t i = 0; i + 1 < arguments.size(); ++i) {
    if (arguments[i] == "-ZMSource")
      source = arguments[++i];
    else if (arguments[i] == "-ZMDestinations")
      destinations = arguments[++i];
    else if (arguments[i] == "-ZMAutoStart")
      autoStart = arguments[++i];
  }
  LaunchOptions options;
  if (!source.empty()) options.source = absolute(source);
  if (!destinations.empty()) options.destinations = pathsBetweenColons(destinations);
  options.autoStart = isYes(autoStart);
  return options;
}

std::optional<std::pair<int, int>> Settings::windowSize() const {
  constexpr int kLargest = 32767;  // of any window system
  const int width = file_.value(kWindowWidth).toString().toInt();
  const int height = file_.value(kWindowHeight).toString().toInt();
  if (width <= 0 || height <= 0 || width > kLargest || height > kLargest) return std::nullopt;
  return std::pair(width, height);
}

void Settings::saveWindowSize(int width, int height) {
  file_.setValue(kWindowWidth, width);
  file_.setValue(kWindowHeight, height);
  soon_.start();
}

}  // namespace ZephrimarkOffload
