#pragma once

#include "ZephrimarkOffload/Model/DiskQuestions.h"
#include "ZephrimarkOffload/Model/MainQueue.h"

#include <functional>
#include <map>
#include <memory>
#include <string>

namespace ZephrimarkOffload {

/// Asks the disks in the background. Every question has a thread of its own, since one that waits
/// for a dead network volume never ends and must not keep others waiting. Main thread.
class Background {
 public:
  /// `questions` lives until the last question that was asked is answered.
  explicit Background(std::shared_ptr<DiskQuestions> questions)
      : questions_(std::move(questions)) {}

  /// Runs `question` on another thread, then `answer` with what it answered on the main thread,
  /// unless this object is gone by then. While a question with the same name waits for its answer,
  /// a second one waits behind it and any more are dropped, so that questions to a dead volume do not
  /// pile up and the last answer is never older than the last question. When there is no thread to
  /// be had, nothing happens.
  template <class Question, class Answer>
  void ask(const std::string& name, Question question, Answer answer) {
    const auto [asking, isNew] = asking_.try_emplace(name);
    if (!isNew) {
      asking->second = [this, name, question, answer] { ask(name, question, answer); };
      return;
    }
    const bool started =
        run([this, name, question, answer, main = main_.sender(), questions = questions_] {
          main->post([this, name, answer, result = question(*questions)] {
            const std::function<void()> again = std::move(asking_[name]);
            asking_.erase(name);
            answer(result);
            if (again) again();
          });
        });
    if (!started) asking_.erase(name);
  }

  /// For what comes from other threads, such as a watcher's.
  [[nodiscard]] std::shared_ptr<MainQueue::Sender> main() const { return main_.sender(); }

 private:
  [[nodiscard]] static bool run(std::function<void()> work);

  std::shared_ptr<DiskQuestions> questions_;
  /// The names of the questions without an answer, with what is to be asked behind each.
  std::map<std::string, std::function<void()>> asking_;
  MainQueue main_;
};

}  // namespace ZephrimarkOffload
