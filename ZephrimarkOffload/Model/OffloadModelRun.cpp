// The model's part that carries out an offload.

#include "OffloadKit/Records/OffloadError.h"
#include "OffloadKit/Records/Verdict.h"
#include "OffloadKit/Wording/ShownReason.h"
#include "PlatformKit/Paths.h"
#include "TextKit/Translation.h"
#include "TextKit/Unicode.h"
#include "ZephrimarkOffload/Model/Notice.h"
#include "ZephrimarkOffload/Model/OffloadModel.h"

namespace ZephrimarkOffload {

using PlatformKit::Path;

OffloadKit::OffloadPlan OffloadModel::plan() const {
  OffloadKit::OffloadPlan plan;
  plan.source = *source_;
  plan.sourceName = sourceName();
  plan.destinations = plannedFolders();
  for (std::size_t i = 0; i < choices_.destinations.size(); ++i) {
    const auto facts = destinationFacts(i);
    plan.chosen.push_back({choices_.destinations[i], facts ? facts->volume : std::nullopt});
  }
  plan.algorithm = choices_.algorithm;
  plan.verifySource = choices_.verifySource;
  plan.chunkSize = OffloadKit::kUsualChunkSize;
  plan.cardImage = imageRequest();
  return plan;
}

void OffloadModel::start() {
  const bool canStart = stage_.kind() == Stage::Kind::setup || stage_.kind() == Stage::Kind::failed;
  if (!canStart || !source_ || blocker()) return;
  const OffloadKit::OffloadPlan plan = this->plan();
  runPlan_ = plan;
  runDestinations_ = choices_.destinations;
  runNumber_ = sourceNumber_;
  // The thread of the offload before has sent its outcome and is at its end.
  if (run_.joinable()) run_.join();
  engine_ = services_.makeRunner();
  startedAt_ = services_.clock.now();
  driveNames_.clear();
  for (const auto& room : readiness().destinations) driveNames_.push_back(room.volumeName);
  progress_.reset();
  ejectMessage_.clear();
  isStopping_ = false;
  services_.desktop.holdAwake(QString::fromStdString(TextKit::filled(
      TextKit::translate("Progress", "Copying %1"), {TextKit::singleLineText(plan.sourceName)})));
  setStage(Stage::running());
  services_.desktop.requestNotificationPermission();
  std::optional<Path> ejectTarget;
  if (choices_.ejectWhenDone && sourceFacts_.isVolumeRoot) ejectTarget = source_;
  runInBackground(plan, ejectTarget);
}

void OffloadModel::runInBackground(const OffloadKit::OffloadPlan& plan,
                                   const std::optional<Path>& ejectTarget) {
  const auto work = [this, plan, ejectTarget, engine = engine_, main = background_.main()] {
    try {
      auto result = std::make_shared<OffloadKit::OffloadResult>(
          engine->run(plan, [this, &main](const OffloadKit::OffloadProgress& progress) {
            main->post([this, progress] { progressed(progress); });
          }));
      main->post([this, result, ejectTarget] { finished(std::move(*result), ejectTarget); });
    } catch (const OffloadKit::OffloadError& error) {
      if (error.isCancelled()) {
        main->post([this] { stopped(); });
      } else {
        main->post([this, message = OffloadKit::shown(error.reason())] { failed(message); });
      }
    } catch (const std::exception& error) {
      main->post([this, message = std::string(error.what())] { failed(message); });
    }
  };
  try {
    run_ = std::thread(work);
  } catch (const std::system_error& error) {
    failed(OffloadKit::shown(OffloadKit::Reason::ofSystem(error.code().value())));
  }
}

void OffloadModel::cancel() {
  if (!engine_) return;
  engine_->cancel();
  if (stage_.kind() != Stage::Kind::running || isStopping_) return;
  isStopping_ = true;
  emit progressChanged();
}

void OffloadModel::progressed(OffloadKit::OffloadProgress progress) {
  const double before = progress_ ? progress_->fraction : 0;
  progress_ = std::move(progress);
  const double fraction = progress_->fraction;
  if (fraction != before) {
    services_.desktop.setBadge(fraction > 0 ? std::optional(fraction) : std::nullopt);
  }
  emit progressChanged();
}

// Whatever way an offload ends.
void OffloadModel::leaveRunning(Stage stage) {
  isStopping_ = false;
  setStage(std::move(stage));
  services_.desktop.setBadge(std::nullopt);
  services_.desktop.releaseAwake();
}

void OffloadModel::finished(OffloadKit::OffloadResult result, const std::optional<Path>& eject) {
  progress_.reset();
  leaveRunning(Stage::done(std::move(result)));
  const auto shown = stage_.result();
  const Notice notice = noticeOf(*shown);
  services_.desktop.notify(QString::fromStdString(notice.title),
                           QString::fromStdString(notice.body));
  if (eject && OffloadKit::Verdict(*shown).mayEject() && isSourceOfRun()) this->eject(*eject);
}

void OffloadModel::stopped() {
  progress_.reset();
  leaveRunning(Stage::setup());
}

void OffloadModel::failed(std::string message) {
  leaveRunning(Stage::failed(std::move(message)));
}

void OffloadModel::setStage(Stage stage) {
  stage_ = std::move(stage);
  emit stageChanged();
}

void OffloadModel::showSetup() {
  if (stage_.kind() == Stage::Kind::running) return;
  setStage(Stage::setup());
  refreshVolumes();
}

void OffloadModel::tryAgain() {
  // Another card in its place is not what the result on the screen is about.
  const bool isSame = isSourceOfRun();
  showSetup();
  if (isSame) start();
}

void OffloadModel::eject(const Path& volume) {
  if (isEjecting_) return;
  const std::string name = TextKit::singleLineText(
      volume == source_ ? sourceName() : PlatformKit::lastComponent(volume));
  isEjecting_ = true;
  ejectMessage_.clear();
  emit ejectChanged();
  background_.ask(
      "eject " + volume.native(),
      [volume, name](DiskQuestions& questions) { return questions.eject(volume, name); },
      [this, name](const std::optional<OffloadKit::Reason>& failure) {
        isEjecting_ = false;
        isEjected_ = !failure;
        ejectMessage_ =
            failure
                ? OffloadKit::shown(*failure)
                : TextKit::filled(
                      TextKit::translate("Setup", "Ejected %1. You can take it out now."), {name});
        emit ejectChanged();
        refreshVolumes();
      });
}

}  // namespace ZephrimarkOffload
