#include "ZephrimarkOffload/Screens/DonePresenter.h"

#include "OffloadKit/Wording/ResultTexts.h"
#include "ZephrimarkOffload/Screens/Text.h"

#include <algorithm>

namespace ZephrimarkOffload {
namespace {

namespace ResultTexts = OffloadKit::ResultTexts;
using Finding = OffloadKit::Verdict::Finding;

// More would not be read on a screen; the report has them all.
constexpr std::size_t kMostLines = 30;

}  // namespace

DonePresenter::DonePresenter(OffloadModel& model, PathAction reveal, PathAction open)
    : model_(model),
      reveal_(std::move(reveal)),
      open_(std::move(open)),
      drives_({"key", "name", "detail", "place", "isVerified"}) {
  connect(&model_, &OffloadModel::stageChanged, this, &DonePresenter::stageChanged);
  connect(&model_.setup(), &OffloadSetup::sourceChanged, this, &DonePresenter::changed);
  connect(&model_.ejection(), &CardEjection::changed, this, &DonePresenter::changed);
}

void DonePresenter::stageChanged() {
  const auto* done = std::get_if<Done>(&model_.stage());
  if (done == nullptr) return;
  run_ = model_.run();
  result_ = done->result;
  verdict_ = OffloadKit::Verdict(*result_);
  drives_.setRows(driveRows());
  std::vector<std::string> unreadable;
  for (const auto& item : result_->unreadable) {
    unreadable.push_back(ResultTexts::unreadableItem(item));
  }
  unreadable_ = lineTexts(ResultTexts::capped(std::move(unreadable), kMostLines));
  std::vector<std::string> failed;
  for (const auto* file : result_->failedFiles()) failed.push_back(ResultTexts::failedFile(*file));
  failedFiles_ = lineTexts(ResultTexts::capped(std::move(failed), kMostLines));
  emit changed();
}

std::vector<QVariantMap> DonePresenter::driveRows() const {
  std::vector<QVariantMap> rows;
  const auto& folders = result_->plan.destinations;
  for (std::size_t i = 0; i < folders.size(); ++i) {
    rows.push_back({{"key", static_cast<int>(i)},
                    {"name", lineText(result_->plan.chosen.at(i).name)},
                    {"detail", lineText(ResultTexts::drive(*result_, i))},
                    {"place", lineText(folders[i].native())},
                    {"isVerified", verdict_.isVerifiedOn(i)}});
  }
  return rows;
}

QString DonePresenter::title() const {
  return QString::fromStdString(ResultTexts::title(*result_));
}

QString DonePresenter::sentence() const {
  return QString::fromStdString(ResultTexts::sentence(*result_));
}

QString DonePresenter::files() const {
  return QString::fromStdString(ResultTexts::files(*result_));
}

QString DonePresenter::took() const {
  return QString::fromStdString(ResultTexts::took(*result_));
}

QString DonePresenter::checksum() const {
  return QString::fromStdString(ResultTexts::checksum(*result_));
}

QString DonePresenter::cardImage() const {
  if (!result_->cardImage) return {};
  return QString::fromStdString(ResultTexts::cardImage(*result_->cardImage));
}

bool DonePresenter::isCardImageVerified() const {
  return result_->cardImage && result_->cardImage->outcome.isVerified();
}

QString DonePresenter::missingProof() const {
  if (!verdict_.has(Finding::recordMissing)) return {};
  return tr("Not every drive got its report and its hash list: they could not be written.");
}

bool DonePresenter::canOpenReport() const {
  return !result_->reports.empty();
}

bool DonePresenter::canEject() const {
  return run_ && model_.isSourceOf(*run_) && run_->order().source->facts.isVolumeRoot;
}

QString DonePresenter::ejectMessage() const {
  return lineText(model_.ejection().message());
}

bool DonePresenter::canTryAgain() const {
  return verdict_.has(Finding::notVerified);
}

void DonePresenter::revealDrive(int row) {
  const auto& folders = result_->plan.destinations;
  if (row >= 0 && static_cast<std::size_t>(row) < folders.size()) {
    reveal_(folders[static_cast<std::size_t>(row)]);
  }
}

void DonePresenter::revealCardImage() {
  if (isCardImageVerified()) reveal_(result_->cardImage->url);
}

void DonePresenter::openReport() {
  if (canOpenReport()) open_(result_->reports.front());
}

void DonePresenter::eject() {
  if (canEject() && !isEjecting()) model_.eject(result_->plan.source);
}

}  // namespace ZephrimarkOffload
