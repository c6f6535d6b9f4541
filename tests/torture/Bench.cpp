#include "tests/torture/Bench.h"

#include "OffloadKit/Proof/C4.h"
#include "OffloadKit/Proof/MHLHistory.h"
#include "PlatformKit/Testing/ManualClock.h"

#include <algorithm>
#include <chrono>
#include <set>

namespace Torture {

using OffloadKit::OffloadPlan;
using OffloadKit::OffloadResult;
using PlatformKit::Date;
using PlatformKit::Testing::pattern;
using PlatformKit::Testing::readFile;
namespace MHL = OffloadKit::MHL;

namespace {

constexpr Date kStart{std::chrono::seconds(1'790'000'000) + std::chrono::milliseconds(250)};

Snapshot cardContent(std::size_t chunk) {
  const std::map<std::string, std::size_t> sizes = {
      {"DCIM/100/several chunks.mov", 3 * chunk + 1},
      {"DCIM/100/exactly two.mov", 2 * chunk},
      {"DCIM/100/less than one.mov", chunk - 1},
      {"DCIM/101/\u00FC composed", 100},
      {"DCIM/101/u\u0308 decomposed 🎬", 101},
      {"DCIM/101/deep/er/one byte", 1},
      {"PRIVATE/M4ROOT/CLIP/C0001.XML", chunk},
      {"PRIVATE/empty", 0},
      {"empty", 0},
      {"not UTF-8 \xFF", 4096},
      {"resumed.mov", 2 * chunk + 5},
      {Bench::kStrangersCopy, 2 * chunk + 7},
      {Bench::kTaken, chunk + 3},
  };
  Snapshot card;
  unsigned seed = 1;
  for (const auto& [path, size] : sizes) {
    ++seed;
    card[path] = {pattern(size, seed), kStart - std::chrono::seconds(100) * seed};
  }
  return card;
}

bool isFolder(const std::string& path) {
  return path.ends_with('/');
}
bool isTemporary(const std::string& path) {
  return path.ends_with(".zmpart");
}

bool isWellFormed(MHL::XMLReader& reader, const std::string& text) {
  return reader.feed(text, true);
}

// Whether a record under its final name is whole. Answers false too for what is no record.
bool isWholeRecord(const Path& path, const std::string& text) {
  if (path.extension() == ".html") return text.ends_with("</html>");
  if (path.parent_path().filename() != "ascmhl") return false;
  if (path.extension() == ".mhl") {
    MHL::PathParser parser([](std::string_view) {});
    return isWellFormed(parser, text);
  }
  if (path.filename() != MHL::kChainName) return false;
  MHL::ChainParser parser;
  return isWellFormed(parser, text) && !parser.entries().empty();
}

}  // namespace

Snapshot snapshotOf(const Path& folder) {
  PlatformKit::LinuxFileSystem linux;
  Snapshot snapshot;
  for (const std::string& path : PlatformKit::Testing::tree(folder)) {
    Item& item = snapshot[path];
    if (!isFolder(path))
      item = {readFile(folder / path), linux.status(folder / path).value().modified};
  }
  return snapshot;
}

void writeItem(const Path& path, const Item& item) {
  PlatformKit::Testing::writeFile(path, item.bytes);
  PlatformKit::LinuxFileSystem linux;
  const int error = linux.setDates(path, item.modified, std::nullopt);
  if (error != 0) throw std::system_error(error, std::generic_category());
}

void restore(const Path& folder, const Snapshot& snapshot) {
  std::filesystem::remove_all(folder);
  std::filesystem::create_directories(folder);
  for (const auto& [path, item] : snapshot) {
    if (isFolder(path)) {
      std::filesystem::create_directories(folder / path);
    } else {
      writeItem(folder / path, item);
    }
  }
}

OffloadResult offload(const OffloadPlan& plan, PlatformKit::FileSystem& fileSystem,
                      PlatformKit::Volumes& volumes, int hour,
                      const std::function<void(const Path&)>& afterWrite) {
  const PlatformKit::Testing::ManualClock clock(kStart + std::chrono::hours(hour));
  PlatformKit::Testing::FakeRawDevices rawDevices;
  const DeviceKit::RawDeviceAccess access(rawDevices, {});
  OffloadKit::OffloadEngine engine({fileSystem, volumes, clock}, access);
  engine.afterWrite = afterWrite;
  return engine.run(plan, [](const OffloadKit::OffloadProgress&) {});
}

Bench::Bench(const Variant& variant) : variant_(variant) {
  const Snapshot content = cardContent(variant.chunk);
  for (std::size_t drive = 0; drive < kDrives; ++drive) {
    PlatformKit::VolumeFacts facts;
    facts.identifier = PlatformKit::VolumeIdentifier{1000 + drive};
    facts.available = 1'000'000'000'000;
    facts.moveKeepsContent = !variant.fat;
    volumes_.lay(drives() / ("drive" + std::to_string(drive)), facts);
    std::filesystem::create_directories(drives() / copies(drive));
  }
  if (!variant.fresh) {
    writeItem(card_ / "resumed.mov", content.at("resumed.mov"));
    run(linux_, 0);
    writeItem(drives() / copies(0) / kStrangersCopy, content.at(kStrangersCopy));
    writeItem(drives() / copies(1) / kTaken, {"somebody's", kStart});
    writeItem(drives() / copies(0) / "notes.txt", {"notes", kStart});
    writeItem(drives() / "drive1/private/letter", {"dear", kStart});
  }
  restore(card_, content);
  cardBefore_ = snapshotOf(card_);
  drivesBefore_ = snapshotOf(drives());
}

std::string Bench::copies(std::size_t drive) {
  return "drive" + std::to_string(drive) + "/2026-10-07/A001";
}

OffloadPlan Bench::plan() const {
  OffloadPlan plan;
  plan.source = card_;
  plan.sourceName = "A001";
  for (std::size_t drive = 0; drive < kDrives; ++drive) {
    plan.destinations.push_back(drives() / copies(drive));
  }
  plan.verifySource = variant_.verifySource;
  plan.chunkSize = variant_.chunk;
  return plan;
}

OffloadResult Bench::run(PlatformKit::FileSystem& fileSystem, int hour) const {
  return offload(plan(), fileSystem, volumes_, hour);
}

OffloadResult Bench::rerun() const {
  return run(linux_, 2);
}

Violations Bench::violationsNow(bool strangersCopyCounts) const {
  Violations violations;
  const Snapshot now = snapshotOf(drives());
  const auto complain = [&](const std::string& path, const char* what) {
    violations.push_back(path + " " + what);
  };
  for (const auto& [path, item] : drivesBefore_) {
    const bool isExempt = !strangersCopyCounts && path == copies(0) + "/" + kStrangersCopy;
    if (isFolder(path) || isExempt) continue;
    const auto found = now.find(path);
    if (found == now.end()) {
      complain(path, "was lost");
    } else if (found->second != item && !path.ends_with(MHL::kChainName)) {
      complain(path, "was there before and was changed");
    }
  }
  for (std::size_t drive = 0; drive < kDrives; ++drive) {
    const std::string top = copies(drive) + "/";
    for (const auto& [path, item] : now) {
      if (isFolder(path) || isTemporary(path) || !path.starts_with(top)) continue;
      const bool isChain = path.ends_with(MHL::kChainName);
      if (drivesBefore_.contains(path) && !isChain) continue;
      const auto original = cardBefore_.find(path.substr(top.size()));
      if (original == cardBefore_.end()) {
        if (!isWholeRecord(path, item.bytes)) complain(path, "is not a whole record");
        continue;
      }
      if (item.bytes != original->second.bytes) complain(path, "differs from the original");
      if (item.modified != original->second.modified) complain(path, "has another date");
    }
    for (const auto& entry : MHL::readChain(linux_, drives() / top / "ascmhl")) {
      const auto list = now.find(top + "ascmhl/" + entry.path);
      if (list == now.end()) {
        complain(entry.path, "is in the chain but not there");
      } else if (OffloadKit::c4ID(list->second.bytes) != entry.c4) {
        complain(entry.path, "is not what the chain says");
      }
    }
  }
  if (snapshotOf(card_) != cardBefore_) violations.emplace_back("the card was changed");
  return violations;
}

Violations Bench::lostOf(const OffloadResult& result) const {
  Violations lost;
  const auto expect = [&lost](const Path& path, bool isThere) {
    if (!isThere) lost.push_back(path.native() + " was promised and is lost");
  };
  for (const auto* records : {&result.mhlFiles, &result.reports}) {
    for (const Path& path : *records) {
      expect(path, std::filesystem::exists(path) && isWholeRecord(path, readFile(path)));
    }
  }
  for (const auto& file : result.files) {
    const std::string& path = file.file.relativePath;
    for (std::size_t drive = 0; drive < kDrives; ++drive) {
      if (!file.outcomes[drive].isVerified()) continue;
      const Path copy = drives() / copies(drive) / path;
      expect(copy, std::filesystem::exists(copy) && readFile(copy) == cardBefore_.at(path).bytes);
    }
  }
  return lost;
}

// The newest hash list has every verified file with its checksum.
void Bench::checkNewest(std::size_t drive, const OffloadResult& result,
                        Violations& violations) const {
  const Path lists = drives() / copies(drive) / "ascmhl";
  const auto chain = MHL::readChain(linux_, lists);
  if (chain.empty() || !std::filesystem::exists(lists / chain.back().path)) {
    violations.push_back("no hash list on drive " + std::to_string(drive));
    return;
  }
  const std::string text = readFile(lists / chain.back().path);
  std::set<std::string, std::less<>> listed;
  MHL::PathParser parser([&](std::string_view path) { listed.emplace(path); });
  static_cast<void>(parser.feed(text, true));
  for (const auto& file : result.files) {
    if (!file.outcomes[drive].isVerified()) continue;
    if (!listed.contains(MHL::carriedPath(file.file.relativePath)) ||
        text.find(">" + file.hash.value() + "</") == std::string::npos) {
      violations.push_back(file.file.relativePath + " is not in the hash list");
    }
  }
}

Violations Bench::violationsOf(const OffloadResult& result, bool strangersCopyCounts) const {
  Violations violations = violationsNow(strangersCopyCounts);
  if (result.files.size() !=
      cardBefore_.size() - static_cast<std::size_t>(std::count_if(
                               cardBefore_.begin(), cardBefore_.end(),
                               [](const auto& item) { return isFolder(item.first); }))) {
    violations.emplace_back("not every file of the card was handled");
  }
  for (const auto& file : result.files) {
    const std::string& path = file.file.relativePath;
    for (std::size_t drive = 0; drive < kDrives; ++drive) {
      const Path copy = drives() / copies(drive) / path;
      if (file.outcomes[drive].isVerified()) {
        if (!std::filesystem::exists(copy) || readFile(copy) != cardBefore_.at(path).bytes) {
          violations.push_back(copy.native() + " is verified with other bytes");
        }
        continue;
      }
      const bool mayFail =
          !variant_.fresh && ((drive == 1 && path == kTaken) ||
                              (drive == 0 && path == kStrangersCopy && !strangersCopyCounts));
      if (!mayFail) {
        violations.push_back(copy.native() +
                             " failed: " + file.outcomes[drive].reason()->english());
      }
    }
  }
  for (std::size_t drive = 0; drive < kDrives; ++drive) checkNewest(drive, result, violations);
  for (const auto& [path, item] : snapshotOf(drives())) {
    if (isTemporary(path)) violations.push_back(path + " was left behind");
  }
  return violations;
}

}  // namespace Torture
