#include "ZephrimarkOffload/Model/OffloadModel.h"

#include "PlatformKit/Paths.h"
#include "TextKit/Translation.h"
#include "TextKit/Unicode.h"
#include "ZephrimarkOffload/Model/StepTexts.h"

#include <algorithm>

namespace ZephrimarkOffload {

using PlatformKit::Path;

OffloadModel::OffloadModel(Services services)
    : services_(std::move(services)),
      background_(services_.questions),
      volumeBoard_(background_, [this](const VolumeBoard::Lists& lists) { volumesListed(lists); }),
      destinationBoard_(background_, [this] { destinationsAnswered(); }) {
  choices_ = services_.settings.load();
  unconfirmed_ = choices_.destinations;
  followDestinations();
  // An event that is on its way when the model goes is dropped.
  services_.watcher.start(
      [this, main = background_.main()] { main->post([this] { refreshVolumes(); }); });
  refreshVolumes();
}

OffloadModel::~OffloadModel() {
  cancel();
  if (run_.joinable()) run_.join();
  services_.desktop.setBadge(std::nullopt);
  services_.desktop.releaseAwake();
}

void OffloadModel::save() {
  services_.settings.save(choices_);
}

// Volumes

void OffloadModel::refreshVolumes() {
  volumeBoard_.refresh(source_);
  destinationBoard_.refresh();
}

void OffloadModel::volumesListed(const VolumeBoard::Lists& lists) {
  drives_ = lists.drives;
  cards_ = lists.cards;
  if (source_ && lists.gone == source_) setSource(std::nullopt);
  if (!source_ && cards_.size() == 1) setSource(cards_.front().url);
  checkSourceFacts();
  emit volumesChanged();
}

std::vector<DeviceKit::Volume> OffloadModel::suggestedDrives() const {
  std::vector<DeviceKit::Volume> suggested;
  for (const DeviceKit::Volume& drive : drives_) {
    const auto identifier = volumeBoard_.identifier(drive.url);
    const auto holdsOne = [&](const Path& destination) {
      const auto facts = destinationBoard_.facts(destination);
      if (facts && identifier) return facts->volume && *facts->volume == *identifier;
      // Not answered yet: judged by the path, so that no row comes and goes.
      return PlatformKit::isInside(destination, drive.url);
    };
    const auto& destinations = choices_.destinations;
    if (drive.url == source_) continue;
    if (std::none_of(destinations.begin(), destinations.end(), holdsOne)) {
      suggested.push_back(drive);
    }
  }
  return suggested;
}

// Source

void OffloadModel::setSource(std::optional<Path> source) {
  if (source) source = normalized(*source);
  if (source == source_) return;
  source_ = std::move(source);
  refreshSourceInfo();
}

// Another card can be mounted at the same place before anybody noticed that the first one went.
void OffloadModel::checkSourceFacts() {
  if (!source_ || sourceCount_.files == 0) return;
  background_.ask(
      "check " + source_->native(),
      [source = *source_](DiskQuestions& questions) { return questions.source(source); },
      [this, number = sourceNumber_](const SourceFacts& facts) {
        if (number != sourceNumber_ || sourceCount_.files == 0) return;
        const bool isSame = facts.name == sourceFacts_.name && facts.disk == sourceFacts_.disk &&
                            facts.volume == sourceFacts_.volume &&
                            facts.isVolumeRoot == sourceFacts_.isVolumeRoot;
        if (!isSame) refreshSourceInfo();
      });
}

void OffloadModel::refreshSourceInfo() {
  ++sourceNumber_;
  sourceFacts_ = {};
  sourceCount_ = {};
  if (source_) {
    const Path source = *source_;
    sourceFacts_.name = PlatformKit::lastComponent(source);
    background_.ask(
        "source " + source.native(),
        [source](DiskQuestions& questions) { return questions.source(source); },
        [this, source, number = sourceNumber_](const SourceFacts& facts) {
          if (number != sourceNumber_) return;
          sourceFacts_ = facts;
          camera_ = facts.camera;
          emit sourceChanged();
          background_.ask(
              "count " + source.native(),
              [source](DiskQuestions& questions) { return questions.count(source); },
              [this, number](const SourceCount& count) {
                // A source that was changed in the meantime has a count of its own.
                if (number != sourceNumber_) return;
                sourceCount_ = count;
                emit sourceChanged();
              });
        });
  }
  emit sourceChanged();
}

// Destinations

void OffloadModel::addDestination(const Path& destination) {
  auto destinations = choices_.destinations;
  const Path plain = normalized(destination);
  const bool isThere =
      std::find(destinations.begin(), destinations.end(), plain) != destinations.end();
  if (destinations.size() >= kMostDestinations || isThere) return;
  destinations.push_back(plain);
  replaceDestinations(std::move(destinations));
}

void OffloadModel::removeDestination(const Path& destination) {
  auto destinations = choices_.destinations;
  std::erase(destinations, destination);
  replaceDestinations(std::move(destinations));
}

void OffloadModel::setDestinations(std::vector<Path> destinations) {
  // Chosen now, not remembered: one that is not there yet will be made.
  unconfirmed_.clear();
  for (Path& destination : destinations) destination = normalized(destination);
  replaceDestinations(std::move(destinations));
}

void OffloadModel::takeFolder(const Path& path, bool asSource) {
  background_.ask(
      "folder " + path.native(),
      [path](DiskQuestions& questions) { return questions.isFolder(path); },
      [this, path, asSource](bool isFolder) {
        if (!isFolder || stage_.kind() != Stage::Kind::setup) return;
        asSource ? setSource(path) : addDestination(path);
      });
}

void OffloadModel::replaceDestinations(std::vector<Path> destinations) {
  choices_.destinations = std::move(destinations);
  save();
  followDestinations();
}

void OffloadModel::followDestinations() {
  destinationBoard_.follow(choices_.destinations);
  emit destinationsChanged();
}

void OffloadModel::destinationsAnswered() {
  const auto isAnswered = [this](const Path& path) {
    return destinationBoard_.facts(path).has_value();
  };
  bool dropped = false;
  for (const Path& path : unconfirmed_) {
    const auto facts = destinationBoard_.facts(path);
    if (facts && !facts->exists) dropped |= std::erase(choices_.destinations, path) > 0;
  }
  std::erase_if(unconfirmed_, isAnswered);
  if (dropped) {
    followDestinations();
  } else {
    emit destinationsChanged();
  }
}

std::optional<DestinationFacts> OffloadModel::destinationFacts(std::size_t index) const {
  return destinationBoard_.facts(choices_.destinations[index]);
}

bool OffloadModel::onlyInternalCopies() const {
  const auto& destinations = choices_.destinations;
  return !destinations.empty() &&
         std::all_of(destinations.begin(), destinations.end(), [this](const Path& destination) {
           const auto facts = destinationBoard_.facts(destination);
           return facts && facts->isInternal;
         });
}

// Options

void OffloadModel::setPreset(OffloadKit::FolderPreset preset) {
  choices_.preset = std::move(preset);
  save();
  emit optionsChanged();
}

void OffloadModel::setProject(std::string project) {
  choices_.project = std::move(project);
  save();
  emit optionsChanged();
}

void OffloadModel::setAlgorithm(HashKit::HashAlgorithm algorithm) {
  choices_.algorithm = algorithm;
  save();
  emit optionsChanged();
}

void OffloadModel::setVerifySource(bool verifySource) {
  choices_.verifySource = verifySource;
  save();
  emit optionsChanged();
}

void OffloadModel::setEjectWhenDone(bool ejectWhenDone) {
  choices_.ejectWhenDone = ejectWhenDone;
  save();
  emit optionsChanged();
}

void OffloadModel::setSaveCardImage(bool saveCardImage) {
  choices_.saveCardImage = saveCardImage;
  save();
  emit optionsChanged();
}

// What follows from the choices

std::string OffloadModel::folderName() const {
  const std::string& card = sourceFacts_.name;
  return choices_.preset.resolve(
      {services_.clock.now(), card.empty() ? "Card" : card, camera_, choices_.project});
}

std::vector<Path> OffloadModel::plannedFolders() const {
  const std::string folder = folderName();
  std::vector<Path> folders;
  for (const Path& destination : choices_.destinations) folders.push_back(destination / folder);
  return folders;
}

const std::optional<DeviceKit::WholeDisk>& OffloadModel::cardDisk() const {
  return sourceFacts_.disk;
}

Readiness OffloadModel::readiness() const {
  Readiness readiness;
  readiness.hasSource = source_.has_value();
  readiness.sourceFileCount = sourceCount_.files;
  readiness.sourceSize = sourceCount_.bytes;
  for (const Path& destination : choices_.destinations) {
    const auto facts = destinationBoard_.facts(destination);
    Readiness::Room room{PlatformKit::lastComponent(destination), std::nullopt};
    if (facts) room = {TextKit::singleLineText(facts->volumeName), facts->freeSpace};
    readiness.destinations.push_back(std::move(room));
  }
  if (choices_.saveCardImage && cardDisk()) readiness.cardImageSize = cardDisk()->size;
  return readiness;
}

std::optional<std::size_t> OffloadModel::imageDestinationIndex() const {
  return imageDestination(readiness().destinations);
}

std::optional<OffloadKit::CardImageRequest> OffloadModel::imageRequest() const {
  const auto index = imageDestinationIndex();
  if (!choices_.saveCardImage || !cardDisk() || !index) return std::nullopt;
  return OffloadKit::CardImageRequest{cardDisk()->rawPath, *index, cardDisk()->size};
}

std::optional<std::string> OffloadModel::blocker() const {
  if (isEjecting_) return TextKit::translate("Setup", "Ejecting the card…");
  return ZephrimarkOffload::blocker(readiness());
}

int OffloadModel::step() const {
  return ZephrimarkOffload::step({stage_, source_.has_value(), sourceName(),
                                  choices_.destinations.size(), std::nullopt, progress_});
}

std::string OffloadModel::stepStatus() const {
  // While it runs, the choices may change with the cards that come and go; the plan does not.
  if (stage_.kind() == Stage::Kind::running) {
    return ZephrimarkOffload::stepStatus(
        {stage_, true, runPlan_.sourceName, runPlan_.destinations.size(), std::nullopt, progress_});
  }
  return ZephrimarkOffload::stepStatus({stage_, source_.has_value(), sourceName(),
                                        choices_.destinations.size(), blocker(), progress_});
}

}  // namespace ZephrimarkOffload
