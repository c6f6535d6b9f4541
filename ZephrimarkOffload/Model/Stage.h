#pragma once

#include "OffloadKit/Records/OffloadResult.h"

#include <memory>
#include <string>

namespace ZephrimarkOffload {

/// Which screen the window shows, with what that screen is about.
class Stage {
 public:
  enum class Kind { setup, running, done, failed };

  static Stage setup() { return Stage(Kind::setup); }
  static Stage running() { return Stage(Kind::running); }
  static Stage done(OffloadKit::OffloadResult result) {
    Stage stage(Kind::done);
    stage.result_ = std::make_shared<const OffloadKit::OffloadResult>(std::move(result));
    return stage;
  }
  /// `message`: a sentence for people.
  static Stage failed(std::string message) {
    Stage stage(Kind::failed);
    stage.message_ = std::move(message);
    return stage;
  }

  [[nodiscard]] Kind kind() const { return kind_; }
  /// Null but in `done`. Lives as long as somebody holds it.
  [[nodiscard]] const std::shared_ptr<const OffloadKit::OffloadResult>& result() const {
    return result_;
  }
  /// Empty but in `failed`.
  [[nodiscard]] const std::string& message() const { return message_; }

 private:
  explicit Stage(Kind kind) : kind_(kind) {}

  Kind kind_;
  std::shared_ptr<const OffloadKit::OffloadResult> result_;
  std::string message_;
};

}  // namespace ZephrimarkOffload
