#include "OffloadKit/Proof/MHL.h"
#include "OffloadKit/Proof/MHLHistory.h"
#include "PlatformKit/Linux/LinuxFileSystem.h"
#include "PlatformKit/Testing/TempFolder.h"
#include "fuzz/Input.h"
#include "fuzz/Xml.h"

#include <algorithm>
#include <string>
#include <system_error>

using namespace OffloadKit;
using PlatformKit::Testing::writeFile;

namespace {

constexpr PlatformKit::Date kNow(std::chrono::seconds(1'791'376'325));

}  // namespace

/// Input: a chain file, a generation file named "1.mhl" and the name of a copied file, with zero
/// bytes between. The next generation is written beside them.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  auto parts = Fuzz::partsOf(Fuzz::textOf(data, size), 3);
  parts.resize(3);
  const PlatformKit::Testing::TempFolder folder;
  const PlatformKit::Path lists = "ascmhl";
  writeFile(folder.path() / lists / MHL::kChainName, parts[0]);
  writeFile(folder.path() / lists / "1.mhl", parts[1]);

  PlatformKit::LinuxFileSystem fileSystem;
  const auto held = fileSystem.openFolder(folder.path(), PlatformKit::Mounts::refused);
  PlatformKit::Folder& within = *held.value();
  const auto before = MHL::readChain(within, lists);
  OffloadedFile file;
  file.file = {std::string(parts[2]), size, kNow, {}};
  file.hash = "00";
  file.outcomes = {OffloadedFile::Outcome::verified(false)};
  PlatformKit::Path written;
  try {
    written =
        MHL::writeGeneration(within, "A001", {file}, 0, {}, HashKit::HashAlgorithm::xxh64, kNow);
  } catch (const std::system_error&) {
    return 0;  // Such as a generation of that name that is there already.
  }
  const auto after = MHL::readChain(within, lists);
  Fuzz::require(after.size() == before.size() + 1, "the chain has one generation more");
  for (const MHL::ChainEntry& entry : before) {
    Fuzz::require(std::find(after.begin(), after.end(), entry) != after.end(),
                  "the generations before are still in the chain");
  }
  Fuzz::require(after.back().path == written.filename().native(), "the newest generation is last");
  Fuzz::require(written.parent_path() == lists, "it lies in the folder of lists");
  Fuzz::require(
      MHL::knownRows(within, lists, {after.back()}, {{file.file.relativePath, 0, {}, ""}}).front(),
      "its paths are known from then on");
  return 0;
}
