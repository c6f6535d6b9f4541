#pragma once

#include "OffloadKit/Records/OffloadPlan.h"
#include "ZephrimarkOffload/Model/MainQueue.h"
#include "ZephrimarkOffload/Model/OffloadRunner.h"
#include "ZephrimarkOffload/Model/SourceMonitor.h"
#include "ZephrimarkOffload/Model/Stage.h"

#include <memory>
#include <string>
#include <thread>

#include <QObject>

namespace ZephrimarkOffload {

/// One offload, from its start to its end and what came of it: everything that a window shows of
/// it. The engine works on a thread of its own; each of its reports and the outcome come to the
/// main thread, in order. Main thread. Owned by shared pointers; what comes from the engine behind
/// the end of the last one is dropped.
class Run final : public QObject, public std::enable_shared_from_this<Run> {
  Q_OBJECT

 public:
  /// What is fixed at the start and holds for the whole run.
  struct Order {
    OffloadKit::OffloadPlan plan;
    /// What was chosen to be offloaded; see SourceMonitor::source.
    std::shared_ptr<const ChosenSource> source;
    bool ejectsCard = false;  ///< when everything that was asked for is there
  };

  /// `main` brings what comes from the engine's thread to the main one.
  Run(Order order, std::unique_ptr<OffloadRunner> runner, std::shared_ptr<MainQueue::Sender> main)
      : order_(std::move(order)), runner_(std::move(runner)), main_(std::move(main)) {}
  /// Stops it and waits for its thread.
  ~Run() override;

  /// Lets the engine begin, once. Where there is no thread to be had it has ended when this
  /// returns.
  void begin();
  /// Asks it to stop at its next step; also before `begin`.
  void cancel();

  [[nodiscard]] const Order& order() const { return order_; }
  [[nodiscard]] const OffloadKit::OffloadPlan& plan() const { return order_.plan; }
  /// Running from the beginning on, before `begin` too; then Done, Failed, or Choosing when it was
  /// stopped, since nothing is shown of one that was.
  [[nodiscard]] const Stage& stage() const { return stage_; }

 signals:
  /// There is another report, or it was asked to stop.
  void progressed();
  /// The last signal of a run: its stage is its outcome.
  void ended();

 private:
  void report(const OffloadKit::OffloadProgress& progress);
  void end(Stage outcome);

  const Order order_;
  const std::shared_ptr<OffloadRunner> runner_;
  const std::shared_ptr<MainQueue::Sender> main_;
  Stage stage_ = Running{};
  std::thread thread_;
};

}  // namespace ZephrimarkOffload
