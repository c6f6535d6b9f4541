#pragma once

#include "ZephrimarkOffload/Model/DiskQueries.h"
#include "ZephrimarkOffload/Model/MainQueue.h"

#include <functional>
#include <map>
#include <memory>
#include <string>

namespace ZephrimarkOffload {

/// Asks the disks in the background. Every query has a thread of its own, since one that waits for
/// a dead network volume never ends and must not keep others waiting. Main thread.
class Background {
 public:
  /// `disks` lives until the last query that was asked is answered.
  explicit Background(std::shared_ptr<DiskQueries> disks) : disks_(std::move(disks)) {}

  /// Runs `query` on another thread, then `answer` with what it answered on the main thread, unless
  /// this object is gone by then. While a query with the same name waits for its answer, a second
  /// one waits behind it and any more are dropped, so that queries to a dead volume do not pile up
  /// and the last answer is never older than the last query. When there is no thread to be had,
  /// nothing happens.
  template <class Query, class Answer>
  void ask(const std::string& name, Query query, Answer answer) {
    const auto [asking, isNew] = asking_.try_emplace(name);
    if (!isNew) {
      asking->second = [this, name, query, answer] { ask(name, query, answer); };
      return;
    }
    const bool started = run([this, name, query, answer, main = main_.sender(), disks = disks_] {
      main->post([this, name, answer, result = query(*disks)] {
        const std::function<void()> again = std::move(asking_[name]);
        asking_.erase(name);
        answer(result);
        if (again) again();
      });
    });
    if (!started) asking_.erase(name);
  }

  /// For what comes from other threads, such as a watcher's. What is given behind the end of this
  /// object is dropped.
  [[nodiscard]] std::shared_ptr<MainQueue::Sender> main() const { return main_.sender(); }

 private:
  [[nodiscard]] static bool run(std::function<void()> work);

  std::shared_ptr<DiskQueries> disks_;
  /// The names of the queries without an answer, with what is to be asked behind each.
  std::map<std::string, std::function<void()>> asking_;
  MainQueue main_;
};

}  // namespace ZephrimarkOffload
