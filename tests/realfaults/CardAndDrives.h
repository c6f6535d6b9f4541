#pragma once

#include "PlatformKit/Testing/TempFolder.h"
#include "tests/endtoend/Program.h"
#include "tests/realfaults/Drives.h"

#include <map>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace RealFaults {

/// What a run of the command line came to.
struct Ended {
  int status;
  std::string error;      ///< what it said to people
  nlohmann::json result;  ///< null when the run never began or was stopped
};

/// A card with four files and two drives "first" and "second", which tests replace by others before
/// the run. The folders belong to a file system in memory where there is one.
class CardAndDrives : public testing::Test {
 protected:
  CardAndDrives();

  void SetUp() override;
  /// Starts the offload of the card to both drives.
  [[nodiscard]] std::unique_ptr<EndToEnd::Program> start() const;
  [[nodiscard]] static Ended endOf(EndToEnd::Program& offload);
  [[nodiscard]] Ended offload() const { return endOf(*start()); }

  /// Writes the card's files into a folder.
  void fill(const Path& folder) const;
  /// Every file is in the folder and has the card's bytes, and no temporary copy is left.
  void expectWhole(const Path& drive) const;
  /// Whatever has a clip's name has its bytes. Answers the number of temporary copies.
  std::size_t expectNothingWrong(const Path& drive) const;
  void expectCardUntouched(const Path& card) const;

  const PlatformKit::Testing::TempFolder temp_;
  const Path card_ = temp_.path() / "A001";
  const Path first_ = temp_.path() / "first";
  const Path second_ = temp_.path() / "second";
  std::map<std::string, std::string> files_;  // by path on the card
};

}  // namespace RealFaults
