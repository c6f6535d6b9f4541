#include "ZephrimarkOffload/Screens/RunningPresenter.h"

#include "OffloadKit/Wording/ProgressTexts.h"
#include "TextKit/DateText.h"
#include "ZephrimarkOffload/Screens/Text.h"

#include <algorithm>
#include <chrono>

namespace ZephrimarkOffload {
namespace {

namespace ProgressTexts = OffloadKit::ProgressTexts;

// Twenty times a second: faster than figures can be read, and smooth for a bar that is animated.
constexpr std::chrono::milliseconds kEvery{50};

}  // namespace

RunningPresenter::RunningPresenter(OffloadModel& model)
    : model_(model),
      drives_({"key", "place", "outcome", "fraction", "isProblem"}),
      logRows_({"key", "time", "text", "isProblem"}) {
  connect(&model_, &OffloadModel::stageChanged, this, &RunningPresenter::stageChanged);
  connect(&model_, &OffloadModel::progressChanged, this, &RunningPresenter::progressed);
  next_.setSingleShot(true);
  next_.setInterval(kEvery);
  next_.callOnTimeout([this] {
    if (isWaiting_) show();
  });
}

void RunningPresenter::stageChanged() {
  if (!is<Running>(model_.stage())) return;
  run_ = model_.run();
  std::vector<std::string> names;
  for (const auto& place : run_->plan().chosen) names.push_back(place.name);
  events_ = RunLog(std::move(names));
  shown_.reset();
  show();
}

void RunningPresenter::progressed() {
  // Every report counts for what happened, also those that are not shown.
  const auto* running = std::get_if<Running>(&model_.stage());
  if (running != nullptr && running->progress) {
    if (events_.add(*running->progress, model_.now())) showLog();
  }
  if (next_.isActive()) {
    isWaiting_ = true;
  } else {
    show();
  }
}

void RunningPresenter::show() {
  isWaiting_ = false;
  next_.start();
  // What the running screen showed last stays on it while it is being left.
  const auto* running = std::get_if<Running>(&model_.stage());
  if (running == nullptr) return;
  shown_ = running->progress;
  showDrives();
  if (!shown_) showLog();
  emit changed();
}

void RunningPresenter::showDrives() {
  std::vector<QVariantMap> rows;
  const auto& chosen = run_->plan().chosen;
  for (std::size_t i = 0; i < chosen.size(); ++i) {
    QVariantMap row{{"key", static_cast<int>(i)},
                    {"place", lineText(chosen[i].name + ": " + chosen[i].folder.native())},
                    {"outcome", QString()},
                    {"fraction", 0.0},
                    {"isProblem", false}};
    if (shown_ && i < shown_->drives.size()) {
      const auto& drive = shown_->drives[i];
      row["outcome"] = QString::fromStdString(ProgressTexts::drive(drive));
      row["isProblem"] = drive.failed > 0;
      const auto total = static_cast<double>(std::max<std::size_t>(shown_->filesTotal, 1));
      row["fraction"] = static_cast<double>(drive.verified) / total;
    }
    rows.push_back(std::move(row));
  }
  drives_.setRows(rows);
}

void RunningPresenter::showLog() {
  std::vector<QVariantMap> rows;
  for (const RunLog::Line& line : events_.lines()) {
    rows.push_back({{"key", static_cast<int>(rows.size())},
                    {"time", QString::fromStdString(TextKit::localDateText(line.time, "%H:%M"))},
                    {"text", lineText(line.text)},
                    {"isProblem", line.isProblem}});
  }
  logRows_.setRows(rows);
}

QString RunningPresenter::heading() const {
  return tr("Offloading %1").arg(run_ ? lineText(run_->plan().sourceName) : QString());
}

QString RunningPresenter::phase() const {
  return QString::fromStdString(
      ProgressTexts::phase(shown_, run_ ? run_->plan().destinations.size() : 0));
}

bool RunningPresenter::isStopping() const {
  const auto* running = std::get_if<Running>(&model_.stage());
  return running != nullptr && running->isStopping;
}

double RunningPresenter::fraction() const {
  return shown_ ? std::clamp(shown_->fraction, 0.0, 1.0) : 0;
}

QString RunningPresenter::percent() const {
  return tr("%1%").arg(static_cast<int>(fraction() * 100));
}

QString RunningPresenter::files() const {
  return QString::fromStdString(ProgressTexts::files(shown_));
}

QString RunningPresenter::speed() const {
  return QString::fromStdString(ProgressTexts::speed(shown_));
}

QString RunningPresenter::remaining() const {
  const PlatformKit::Date start = run_ ? run_->plan().made : PlatformKit::Date{};
  const auto elapsed = std::chrono::duration<double>(model_.now() - start).count();
  return QString::fromStdString(ProgressTexts::remaining(shown_, elapsed));
}

QString RunningPresenter::currentFile() const {
  return shown_ ? lineText(shown_->currentFile) : QString();
}

}  // namespace ZephrimarkOffload
