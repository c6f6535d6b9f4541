#include "ZephrimarkOffload/Screens/SetupPresenter.h"

#include "TextKit/Translation.h"
#include "ZephrimarkOffload/Model/PlatformWords.h"
#include "ZephrimarkOffload/Model/SetupTexts.h"
#include "ZephrimarkOffload/Screens/Text.h"

#include <algorithm>
#include <chrono>

namespace ZephrimarkOffload {
namespace {

using PlatformKit::Path;

QString toText(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

Path pathAt(const RowModel& rows, int row) {
  const QModelIndex index = rows.index(row);
  return rows.data(index, rows.roleNames().key("key")).toByteArray().toStdString();
}

}  // namespace

SetupPresenter::SetupPresenter(OffloadModel& model, Path home)
    : model_(model),
      setup_(model.setup()),
      home_(std::move(home)),
      cards_({"key", "name", "detail", "selected", "symbol"}),
      destinations_({"key", "name", "place", "free", "isShort", "isInternal"}),
      suggestedDrives_({"key", "name", "free"}) {
  for (const auto signal : {&OffloadSetup::volumesChanged, &OffloadSetup::sourceChanged,
                            &OffloadSetup::destinationsChanged, &OffloadSetup::optionsChanged}) {
    connect(&setup_, signal, this, &SetupPresenter::update);
  }
  connect(&model_, &OffloadModel::stageChanged, this, &SetupPresenter::update);
  connect(&model_.ejection(), &CardEjection::changed, this, &SetupPresenter::update);
  clock_.callOnTimeout([this] {
    if (is<Choosing>(model_.stage())) emit changed();
  });
  clock_.start(std::chrono::seconds(10));
  update();
}

void SetupPresenter::update() {
  updateCards();
  updateDestinations();
  updateSuggested();
  emit changed();
}

// Cards

void SetupPresenter::updateCards() {
  std::vector<QVariantMap> rows;
  const auto source = setup_.source();
  bool isListed = false;
  for (const auto& card : setup_.cards()) {
    const bool isSelected = card.url == source->path;
    isListed |= isSelected;
    rows.push_back({{"key", keyOf(card.url)},
                    {"name", lineText(card.name)},
                    {"detail", toText(SetupTexts::used(card.capacity, card.available))},
                    {"selected", isSelected},
                    {"symbol", "sdcard"}});
  }
  if (hasSource() && !isListed) {
    const SourceFacts& facts = source->facts;
    rows.push_back({{"key", keyOf(source->path)},
                    {"name", lineText(facts.name)},
                    {"detail", toText(SetupTexts::sourceDetail(facts, source->path, home_))},
                    {"selected", true},
                    {"symbol", facts.isVolumeRoot ? "sdcard" : "folder"}});
  }
  cards_.setRows(rows);
}

QString SetupPresenter::cardHint() const {
  if (hasSource() || !setup_.cards().empty()) return {};
  return tr("Insert a card, or choose a folder to offload.");
}

QString SetupPresenter::sourceSummary() const {
  if (!hasSource()) return {};
  return toText(SetupTexts::sourceSummary(setup_.source()->count, setup_.camera()));
}

void SetupPresenter::selectCard(int row) {
  if (row >= 0 && row < cards_.count()) setup_.setSource(pathAt(cards_, row));
  // A row that was chosen already was unchecked by the click.
  updateCards();
}

void SetupPresenter::chooseSource(const QUrl& folder) {
  const Path path = pathOf(folder);
  if (!path.empty()) setup_.setSource(path);
}

bool SetupPresenter::canTake(const QList<QUrl>& urls) {
  return !urls.isEmpty() && std::all_of(urls.begin(), urls.end(),
                                        [](const QUrl& url) { return !pathOf(url).empty(); });
}

void SetupPresenter::take(const QList<QUrl>& urls, bool asSource) {
  for (const QUrl& url : asSource ? urls.mid(0, 1) : urls) {
    model_.takeFolder(pathOf(url), asSource);
  }
}

// Destinations

void SetupPresenter::updateDestinations() {
  std::vector<QVariantMap> rows;
  for (std::size_t i = 0; i < setup_.destinations().size(); ++i) {
    const Path& path = setup_.destinations()[i];
    QVariantMap row{{"key", keyOf(path)},
                    {"name", lineText(path.filename().native())},
                    {"place", lineText(path.native())},
                    {"free", QString()},
                    {"isShort", false},
                    {"isInternal", false}};
    if (const auto facts = setup_.destinationFacts(i)) {
      row["name"] = toText(SetupTexts::destinationName(*facts));
      row["place"] = toText(SetupTexts::placeOnDrive(*facts, path, home_));
      row["free"] = toText(SetupTexts::freeText(facts->freeSpace));
      row["isShort"] = facts->freeSpace < setup_.source()->count.bytes;
      row["isInternal"] = facts->isInternal;
    }
    rows.push_back(std::move(row));
  }
  destinations_.setRows(rows);
}

void SetupPresenter::updateSuggested() {
  std::vector<QVariantMap> rows;
  if (canAdd()) {
    for (const auto& drive : setup_.suggestedDrives()) {
      const auto available = static_cast<std::uint64_t>(std::max<std::int64_t>(drive.available, 0));
      rows.push_back(
          {{"key", keyOf(drive.url)},
           {"name", lineText(drive.name)},
           // A drive that has not answered is not a full one.
           {"free", drive.capacity > 0 ? toText(SetupTexts::freeText(available)) : QString()}});
    }
  }
  suggestedDrives_.setRows(rows);
}

bool SetupPresenter::canAdd() const {
  return setup_.destinations().size() < OffloadSetup::kMostDestinations;
}

QString SetupPresenter::drivesHint() const {
  if (!canAdd() || suggestedDrives_.count() > 0) return {};
  return tr("Connect the drives you want to copy to.");
}

QString SetupPresenter::internalWarning() const {
  if (!setup_.onlyInternalCopies()) return {};
  return toText(TextKit::translate("Platform", kWords.onlyThisComputer));
}

QString SetupPresenter::ejectMessage() const {
  return toText(model_.ejection().message());
}

void SetupPresenter::removeDestination(int row) {
  if (row >= 0 && row < destinations_.count()) {
    setup_.removeDestination(pathAt(destinations_, row));
  }
}

void SetupPresenter::addSuggested(int row) {
  if (row >= 0 && row < suggestedDrives_.count()) {
    setup_.addDestination(pathAt(suggestedDrives_, row));
  }
}

void SetupPresenter::addDestination(const QUrl& folder) {
  const Path path = pathOf(folder);
  if (!path.empty()) setup_.addDestination(path);
}

// Folder

QString SetupPresenter::folderName() const {
  return setup_.destinations().empty() ? QString()
                                       : lineText(OffloadKit::folderName(setup_.request()));
}

QString SetupPresenter::onDrives() const {
  return toText(SetupTexts::onDrives(setup_.destinations().size()));
}

QStringList SetupPresenter::presetNames() {
  QStringList names;
  for (const auto& preset : OffloadKit::FolderPreset::presets()) {
    names.push_back(QString::fromStdString(preset.templateText));
  }
  return names << "---" << tr("Custom…");
}

bool SetupPresenter::isCustom() const {
  const auto& presets = OffloadKit::FolderPreset::presets();
  return customPreset_ ||
         std::find(presets.begin(), presets.end(), setup_.options().preset) == presets.end();
}

int SetupPresenter::presetIndex() const {
  const auto& presets = OffloadKit::FolderPreset::presets();
  if (isCustom()) return static_cast<int>(presets.size()) + 1;
  return static_cast<int>(std::find(presets.begin(), presets.end(), setup_.options().preset) -
                          presets.begin());
}

void SetupPresenter::choosePreset(int index) {
  const auto& presets = OffloadKit::FolderPreset::presets();
  const auto chosen = static_cast<std::size_t>(std::max(index, 0));
  customPreset_ = chosen >= presets.size();
  if (!customPreset_) setup_.set(&Options::preset, presets[chosen]);
  emit changed();
}

QString SetupPresenter::templateText() const {
  return QString::fromStdString(setup_.options().preset.templateText);
}

void SetupPresenter::setTemplateText(const QString& text) {
  if (text == templateText()) return;
  // Also when it is one of the presets on the way to something longer.
  customPreset_ = true;
  setup_.set(&Options::preset, {text.toStdString()});
}

QString SetupPresenter::tokensHelp() {
  return toText(SetupTexts::tokensHelp());
}

bool SetupPresenter::needsProject() const {
  return setup_.options().preset.templateText.find("{project}") != std::string::npos;
}

QString SetupPresenter::project() const {
  return QString::fromStdString(setup_.options().project);
}

void SetupPresenter::setProject(const QString& project) {
  if (project != this->project()) setup_.set(&Options::project, project.toStdString());
}

void SetupPresenter::reopen() {
  customPreset_ = false;
  emit changed();
}

// Checks

QStringList SetupPresenter::algorithmNames() {
  QStringList names;
  for (const auto algorithm : HashKit::allHashAlgorithms()) {
    names.push_back(toText(displayName(algorithm)));
  }
  return names;
}

int SetupPresenter::algorithmIndex() const {
  const auto all = HashKit::allHashAlgorithms();
  return static_cast<int>(std::find(all.begin(), all.end(), setup_.options().algorithm) -
                          all.begin());
}

void SetupPresenter::setAlgorithmIndex(int index) {
  const auto all = HashKit::allHashAlgorithms();
  if (index >= 0 && index < static_cast<int>(all.size())) {
    setup_.set(&Options::algorithm, all[static_cast<std::size_t>(index)]);
  }
}

QString SetupPresenter::cardImageDetail() const {
  const auto source = setup_.source();
  if (!source->facts.disk) return {};
  std::string name;
  if (const auto index = imageDestination(setup_.request())) {
    const auto facts = setup_.destinationFacts(*index);
    if (facts) name = SetupTexts::destinationName(*facts);
  }
  // Shown where markup is understood, and a volume can be named anything.
  return toText(SetupTexts::cardImageDetail(source->facts.disk->size, name)).toHtmlEscaped();
}

QString SetupPresenter::cardImageCaption() const {
  return toText(SetupTexts::cardImageCaption(canSaveCardImage()));
}

// Start

QString SetupPresenter::blocker() const {
  return toText(model_.blocker().value_or(""));
}

QString SetupPresenter::startSummary() const {
  return toText(
      SetupTexts::startSummary(setup_.source()->count.bytes, setup_.destinations().size()));
}

}  // namespace ZephrimarkOffload
