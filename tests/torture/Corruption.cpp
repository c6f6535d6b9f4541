#include "PlatformKit/Testing/FaultyFileSystem.h"
#include "tests/torture/Campaign.h"

#include <algorithm>
#include <map>
#include <random>

namespace Torture {
namespace {

using PlatformKit::ReadMode;
using PlatformKit::Testing::Call;
using PlatformKit::Testing::CallInfo;
using PlatformKit::Testing::FaultyFileSystem;
using PlatformKit::Testing::Intervention;

// One bit at one place and moment; or, of as little concern to anybody but the user, a name that
// somebody else takes in the last moment.
enum class Fault {
  whileWriting,
  onMedium,
  atReadBack,
  inOldCopy,
  nameTaken,
  cardFirstReading,
  cardSecondReading,
  cardItself
};
constexpr unsigned kFaults = 8;
constexpr unsigned kFaultsOfDrives = 5;

struct Strike {
  Fault fault{};
  std::size_t drive = 0;
  std::uint64_t byte = 0;
  std::uint64_t bit = 0;
  bool happened = false;
};

constexpr std::size_t kFiles = 25;
constexpr std::size_t kChunk = 8192;
constexpr const char* kSomebodys = "somebody's";

void flipOnDisk(const Path& path, const Strike& strike) {
  Item item = snapshotOf(path.parent_path()).at(path.filename());
  item.bytes[strike.byte] = static_cast<char>(item.bytes[strike.byte] ^ (1 << strike.bit));
  writeItem(path, item);
}

// One run over a card of its own, with one fault for each of its files.
class CorruptedRun {
 public:
  CorruptedRun(std::minstd_rand& random, bool verifySource) : verifySource_(verifySource) {
    for (std::size_t i = 0; i < kFiles; ++i) {
      const std::string name = (i % 3 == 0 ? "DCIM/" : "") + std::to_string(i) + ".mov";
      Item& item = card_[name];
      item.bytes = PlatformKit::Testing::pattern(1 + random() % (3 * kChunk),
                                                 static_cast<unsigned>(random()));
      item.modified = PlatformKit::Date(std::chrono::seconds(1'700'000'000 + random() % 1000));
      Strike& strike = strikes_[name];
      strike.fault = static_cast<Fault>(random() % (verifySource ? kFaults : kFaultsOfDrives));
      strike.drive = random() % 2;
      strike.byte = random() % item.bytes.size();
      strike.bit = random() % 8;
      writeItem(source() / name, item);
      if (strike.fault == Fault::inOldCopy) {
        writeItem(drive(strike.drive) / name, item);
        flipOnDisk(drive(strike.drive) / name, strike);
        strike.happened = true;
      }
    }
  }

  Violations run(const Wrap& wrap) {
    faulty_.setScript([this](const CallInfo& info) { return intervene(info); });
    const auto broken = wrap ? wrap(faulty_) : nullptr;
    OffloadKit::OffloadPlan plan;
    plan.source = source();
    plan.destinations = {drive(0), drive(1)};
    plan.chunkSize = kChunk;
    plan.verifySource = verifySource_;
    const auto onMedium = [this](const Path& temporary) { harm(temporary); };
    const auto result =
        offload(plan, broken ? *broken : static_cast<PlatformKit::FileSystem&>(faulty_), volumes_,
                1, onMedium);
    Violations violations;
    for (const auto& file : result.files) {
      for (const std::size_t drive : {0U, 1U}) check(file, drive, violations);
    }
    for (const auto& [name, strike] : strikes_) {
      if (!strike.happened) violations.push_back(describe(name) + " never happened");
    }
    return violations;
  }

 private:
  [[nodiscard]] Path source() const { return folder_.path() / "card"; }
  [[nodiscard]] Path drive(std::size_t number) const {
    return folder_.path() / ("drive" + std::to_string(number));
  }
  [[nodiscard]] std::string describe(const std::string& name) const {
    const Strike& strike = strikes_.at(name);
    return name + " (fault " + std::to_string(static_cast<int>(strike.fault)) + " on drive " +
           std::to_string(strike.drive) + ", byte " + std::to_string(strike.byte) + ", bit " +
           std::to_string(strike.bit) + ")";
  }

  // The file of the card that a path on the card or on a drive is about; null for anything else.
  Strike* strikeAt(const Path& path, const Path& top) {
    std::string name = path.lexically_relative(top);
    if (path.extension() == ".zmpart") {
      const std::string own = path.filename();
      name.replace(name.size() - own.size(), own.size(), own, 1, own.size() - 8);
    }
    const auto found = strikes_.find(name);
    return found == strikes_.end() ? nullptr : &found->second;
  }

  void harm(const Path& temporary) {
    for (const std::size_t number : {0U, 1U}) {
      Strike* strike = strikeAt(temporary, drive(number));
      if (strike == nullptr || strike->fault != Fault::onMedium || strike->drive != number)
        continue;
      flipOnDisk(temporary, *strike);
      strike->happened = true;
    }
  }

  Intervention intervene(const CallInfo& info) {
    Intervention intervention;
    if (Strike* strike = strikeAt(info.path, source())) {
      if (info.call == Call::openForReading && info.mode == ReadMode::pastCache) {
        ++direct_[info.path];
        if (isReadAgain(info.path) && strike->fault == Fault::cardItself && !strike->happened) {
          flipOnDisk(info.path, *strike);
          strike->happened = true;
        }
      }
      const bool isSecond = isReadAgain(info.path);
      const Fault fault = isSecond ? Fault::cardSecondReading : Fault::cardFirstReading;
      if (info.call == Call::read && strike->fault == fault) {
        flip(info, *strike, true, intervention);
      }
    }
    for (const std::size_t number : {0U, 1U}) {
      Strike* strike = strikeAt(info.path, drive(number));
      if (strike == nullptr || strike->drive != number) continue;
      const bool isFinal = info.path.extension() != ".zmpart";
      if (strike->fault == Fault::whileWriting && info.call == Call::write) {
        flip(info, *strike, false, intervention);
      } else if (strike->fault == Fault::atReadBack && info.call == Call::read && !isFinal) {
        flip(info, *strike, true, intervention);
      } else if (strike->fault == Fault::nameTaken && info.call == Call::move) {
        PlatformKit::Testing::writeFile(info.path, kSomebodys);
        strike->happened = true;
      }
    }
    return intervention;
  }

  // The first reading, too, opens what is behind the first chunk to read it past the cache.
  [[nodiscard]] bool isReadAgain(const Path& path) const {
    const auto opened = direct_.find(path);
    const int first = card_.at(path.lexically_relative(source())).bytes.size() > kChunk ? 1 : 0;
    return opened != direct_.end() && opened->second > first;
  }

  // If the bit lies in what this call transfers. Reads go in halves of a chunk where the file is
  // longer than one half.
  void flip(const CallInfo& info, Strike& strike, bool isReadBack, Intervention& intervention) {
    const std::uint64_t size = card_.at(nameOf(strike)).bytes.size();
    const std::uint64_t piece = isReadBack && size > kChunk / 2 ? kChunk / 2 : kChunk;
    if (strike.happened || strike.byte / piece * piece != info.offset) return;
    intervention.flipBit = true;
    intervention.bit = (strike.byte - info.offset) * 8 + strike.bit;
    strike.happened = true;
  }

  [[nodiscard]] const std::string& nameOf(const Strike& strike) const {
    return std::find_if(strikes_.begin(), strikes_.end(),
                        [&](const auto& entry) { return &entry.second == &strike; })
        ->first;
  }

  void check(const OffloadKit::OffloadedFile& file, std::size_t number, Violations& violations) {
    const std::string& name = file.file.relativePath;
    const Strike& strike = strikes_.at(name);
    const Path copy = drive(number) / name;
    const bool verified = file.outcomes[number].isVerified();
    if (verified && PlatformKit::Testing::readFile(copy) != card_.at(name).bytes) {
      violations.push_back(describe(name) + " is verified with other bytes");
    }
    const bool concerned =
        static_cast<unsigned>(strike.fault) >= kFaultsOfDrives || strike.drive == number;
    if (verified && concerned) violations.push_back(describe(name) + " was not noticed");
    if (!verified && !concerned) {
      violations.push_back(name +
                           " failed for nothing: " + file.outcomes[number].reason()->english());
    }
    const bool wasThere = concerned && strike.fault == Fault::nameTaken;
    if (wasThere && PlatformKit::Testing::readFile(copy) != kSomebodys) {
      violations.push_back(describe(name) + " was there and was replaced");
    }
    const bool isOld = concerned && strike.fault == Fault::inOldCopy;
    if (!verified && !wasThere && !isOld && std::filesystem::exists(copy)) {
      violations.push_back(describe(name) + " failed and has its name");
    }
  }

  const bool verifySource_;
  PlatformKit::Testing::TempFolder folder_;
  PlatformKit::LinuxFileSystem linux_;
  PlatformKit::LinuxVolumes volumes_;
  FaultyFileSystem faulty_{linux_};
  Snapshot card_;
  std::map<std::string, Strike> strikes_;
  std::map<Path, int> direct_;  ///< how often files of the card were opened past the cache
};

}  // namespace

Tally corrupt(std::size_t flips, std::uint64_t seed, bool verifySource, const Wrap& wrap) {
  const auto start = std::chrono::steady_clock::now();
  Tally tally;
  tally.name = verifySource ? "flipped bits" : "flipped bits, card read once";
  std::minstd_rand random(static_cast<std::minstd_rand::result_type>(seed));
  for (; tally.faults < flips; tally.faults += kFiles) {
    const Violations found = CorruptedRun(random, verifySource).run(wrap);
    tally.violations.insert(tally.violations.end(), found.begin(), found.end());
  }
  tally.took = std::chrono::steady_clock::now() - start;
  return tally;
}

}  // namespace Torture
