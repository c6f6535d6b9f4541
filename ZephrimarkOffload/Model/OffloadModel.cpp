#include "ZephrimarkOffload/Model/OffloadModel.h"

#include "OffloadKit/Records/Verdict.h"
#include "PlatformKit/Paths.h"
#include "TextKit/Translation.h"
#include "TextKit/Unicode.h"
#include "ZephrimarkOffload/Model/Notice.h"

namespace ZephrimarkOffload {

using PlatformKit::Path;

OffloadModel::OffloadModel(Services services)
    : services_(std::move(services)),
      background_(services_.disks),
      setup_(background_, services_.watcher, services_.settings, services_.clock),
      ejection_(background_) {
  connect(&ejection_, &CardEjection::changed, this, [this] {
    if (!ejection_.isGoingOn()) setup_.refresh();
  });
}

OffloadModel::~OffloadModel() {
  cancel();
  run_.reset();
  services_.desktop.setBadge(std::nullopt);
  services_.desktop.allowSleep();
}

const Stage& OffloadModel::stage() const {
  static const Stage choosing = Choosing{};
  return run_ ? run_->stage() : choosing;
}

bool OffloadModel::isSourceOf(const Run& run) const {
  return run.order().source == setup_.source();
}

// The course of an offload

void OffloadModel::start() {
  const bool canStart = is<Choosing>(stage()) || is<Failed>(stage());
  if (!canStart || blocker()) return;
  const auto source = setup_.source();
  const bool ejects = setup_.options().ejectWhenDone && source->facts.isVolumeRoot;
  const auto run = std::make_shared<Run>(Run::Order{planFor(setup_.request()), source, ejects},
                                         services_.makeRunner(), background_.main());
  connect(run.get(), &Run::progressed, this, &OffloadModel::showProgress);
  connect(run.get(), &Run::ended, this, &OffloadModel::finish);
  run_ = run;
  ejection_.forget();
  services_.desktop.inhibitSleep(
      QString::fromStdString(TextKit::filled(TextKit::translate("Progress", "Copying %1"),
                                             {TextKit::singleLineText(run->plan().sourceName)})));
  emit stageChanged();
  services_.desktop.requestNotificationPermission();
  run->begin();
}

void OffloadModel::cancel() {
  if (run_) run_->cancel();
}

void OffloadModel::showProgress() {
  const auto& progress = std::get<Running>(stage()).progress;
  if (progress) {
    const double fraction = progress->fraction;
    services_.desktop.setBadge(fraction > 0 ? std::optional(fraction) : std::nullopt);
  }
  emit progressChanged();
}

void OffloadModel::finish() {
  const std::shared_ptr<const Run> run = run_;
  if (is<Choosing>(run->stage())) run_.reset();
  emit stageChanged();
  services_.desktop.setBadge(std::nullopt);
  services_.desktop.allowSleep();
  const auto* done = std::get_if<Done>(&run->stage());
  if (done == nullptr) return;
  const Notice notice = noticeOf(*done->result);
  services_.desktop.notify(QString::fromStdString(notice.title),
                           QString::fromStdString(notice.body));
  const bool mayEject = OffloadKit::Verdict(*done->result).mayEject();
  if (run->order().ejectsCard && mayEject && isSourceOf(*run)) eject(run->plan().source);
}

void OffloadModel::showSetup() {
  if (is<Running>(stage())) return;
  run_.reset();
  emit stageChanged();
  setup_.refresh();
}

void OffloadModel::tryAgain() {
  // Another card in its place is not what the result on the screen is about.
  const bool isSame = run_ && isSourceOf(*run_);
  showSetup();
  if (isSame) start();
}

void OffloadModel::takeFolder(const Path& path, bool asSource) {
  background_.ask(
      "folder " + path.native(), [path](DiskQueries& disks) { return disks.isFolder(path); },
      [this, path, asSource](bool isFolder) {
        if (!isFolder || !is<Choosing>(stage())) return;
        asSource ? setup_.setSource(path) : setup_.addDestination(path);
      });
}

void OffloadModel::eject(const Path& volume) {
  const auto source = setup_.source();
  ejection_.begin(
      volume, TextKit::singleLineText(volume == source->path ? source->facts.name
                                                             : PlatformKit::lastComponent(volume)));
}

// Where the user is

std::optional<std::string> OffloadModel::blocker() const {
  if (ejection_.isGoingOn()) return TextKit::translate("Setup", "Ejecting the card…");
  return setup_.blocker();
}

StepFacts OffloadModel::stepFacts() const {
  // While it runs, the choices may change with the cards that come and go; the plan does not.
  if (is<Running>(stage())) {
    return {stage(), true, run_->plan().sourceName, run_->plan().destinations.size()};
  }
  return {stage(), setup_.hasSource(), setup_.source()->facts.name, setup_.destinations().size(),
          blocker()};
}

int OffloadModel::step() const {
  return ZephrimarkOffload::step(stepFacts());
}

std::string OffloadModel::stepStatus() const {
  return ZephrimarkOffload::stepStatus(stepFacts());
}

}  // namespace ZephrimarkOffload
