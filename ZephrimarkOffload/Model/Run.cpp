#include "ZephrimarkOffload/Model/Run.h"

#include "OffloadKit/Records/OffloadError.h"
#include "OffloadKit/Wording/ShownReason.h"

#include <system_error>

namespace ZephrimarkOffload {
namespace {

// Carries the offload out to its end, on the run's thread.
Stage outcomeOf(OffloadRunner& runner, const OffloadKit::OffloadPlan& plan,
                const OffloadKit::ProgressCallback& report) {
  try {
    return Done{std::make_shared<const OffloadKit::OffloadResult>(runner.run(plan, report))};
  } catch (const OffloadKit::OffloadError& error) {
    if (error.isCancelled()) return Choosing{};
    return Failed{OffloadKit::shown(error.reason())};
  } catch (const std::exception& error) {
    return Failed{error.what()};
  }
}

}  // namespace

Run::~Run() {
  runner_->cancel();
  if (thread_.joinable()) thread_.join();
}

void Run::begin() {
  // The thread keeps what it needs, and the run only weakly: its end is the main thread's business.
  const auto work = [weak = weak_from_this(), plan = plan(), runner = runner_, main = main_] {
    const auto report = [&](const OffloadKit::OffloadProgress& progress) {
      main->post([weak, progress] {
        if (const auto run = weak.lock()) run->report(progress);
      });
    };
    Stage outcome = outcomeOf(*runner, plan, report);
    main->post([weak, outcome = std::move(outcome)] {
      if (const auto run = weak.lock()) run->end(outcome);
    });
  };
  try {
    thread_ = std::thread(work);
  } catch (const std::system_error& error) {
    end(Failed{OffloadKit::shown(OffloadKit::Reason::ofSystem(error.code().value()))});
  }
}

void Run::cancel() {
  runner_->cancel();
  auto* running = std::get_if<Running>(&stage_);
  if (running == nullptr || running->isStopping) return;
  running->isStopping = true;
  emit progressed();
}

void Run::report(const OffloadKit::OffloadProgress& progress) {
  std::get<Running>(stage_).progress = progress;
  emit progressed();
}

void Run::end(Stage outcome) {
  stage_ = std::move(outcome);
  emit ended();
}

}  // namespace ZephrimarkOffload
