#pragma once

#include "PlatformKit/Ejector.h"

#include <string>
#include <vector>

namespace PlatformKit::Testing {

/// Ejects nothing, answers as told and remembers what it was asked for. One thread.
class FakeEjector final : public Ejector {
 public:
  Answer ejectDisk(const std::string& identifier) override {
    asked.push_back(identifier);
    return answer;
  }

  Answer answer = Answer::ejected;
  std::vector<std::string> asked;
};

}  // namespace PlatformKit::Testing
