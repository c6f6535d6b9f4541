#pragma once

#include "OffloadKit/Records/OffloadProgress.h"
#include "OffloadKit/Records/OffloadResult.h"

#include <memory>
#include <optional>
#include <string>
#include <variant>

namespace ZephrimarkOffload {

/// Card, drives and options are being chosen.
struct Choosing {};

/// An offload runs.
struct Running {
  std::optional<OffloadKit::OffloadProgress> progress;  ///< its last report; none before the first
  bool isStopping = false;  ///< it was asked to stop and has not ended yet
};

/// It came to its end, whatever became of its files.
struct Done {
  std::shared_ptr<const OffloadKit::OffloadResult> result;  ///< never null
};

/// It could not start, or an error ended it.
struct Failed {
  std::string message;  ///< a sentence for people, in their language
};

/// How far an offload is, with what that stage alone knows; so also which screen a window shows.
/// One value: what belongs to another stage cannot be asked for.
using Stage = std::variant<Choosing, Running, Done, Failed>;

/// Whether the stage is this one. Any thread.
template <class Kind>
[[nodiscard]] bool is(const Stage& stage) {
  return std::holds_alternative<Kind>(stage);
}

}  // namespace ZephrimarkOffload
