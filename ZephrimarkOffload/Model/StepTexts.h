#pragma once

#include "ZephrimarkOffload/Model/Stage.h"

#include <cstddef>
#include <optional>
#include <string>

namespace ZephrimarkOffload {

/// What the step bar depends on.
struct StepFacts {
  const Stage& stage;
  bool hasSource = false;
  std::string sourceName;                ///< while an offload runs, of its source
  std::size_t destinations = 0;          ///< likewise
  std::optional<std::string> blocker{};  ///< why the next offload cannot start; a sentence
};

/// Which of the steps "Card", "Drives", "Copy and verify", "Done" is the current one, from 0; 4
/// when all are complete. Any thread.
int step(const StepFacts& facts);

/// The sentence below the steps, in the user's language: where the user is and what to do next. Any
/// thread.
std::string stepStatus(const StepFacts& facts);

}  // namespace ZephrimarkOffload
