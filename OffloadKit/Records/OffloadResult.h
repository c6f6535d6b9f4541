#pragma once

#include "OffloadKit/Records/OffloadPlan.h"
#include "OffloadKit/Records/SourceFile.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <variant>
#include <vector>

namespace OffloadKit {

/// What happened to one source file.
struct OffloadedFile {
  /// What happened to it on one destination.
  class Outcome {
   public:
    /// The copy was read back from its drive and equals the source. `resumed`: it was there from an
    /// earlier run and only checked.
    static Outcome verified(bool resumed) { return Outcome(Verified{resumed}); }
    static Outcome failed(Reason reason) { return Outcome(Failed{std::move(reason)}); }

    [[nodiscard]] bool isVerified() const { return std::holds_alternative<Verified>(content_); }
    /// Whether it is verified and was there from an earlier run.
    [[nodiscard]] bool isResumed() const {
      const auto* verified = std::get_if<Verified>(&content_);
      return verified != nullptr && verified->resumed;
    }
    /// The reason of a failure, as long as this outcome stays; null when verified.
    [[nodiscard]] const Reason* reason() const {
      const auto* failed = std::get_if<Failed>(&content_);
      return failed != nullptr ? &failed->reason : nullptr;
    }

    friend bool operator==(const Outcome&, const Outcome&) = default;

   private:
    struct Verified {
      bool resumed;
      friend bool operator==(const Verified&, const Verified&) = default;
    };
    struct Failed {
      Reason reason;
      friend bool operator==(const Failed&, const Failed&) = default;
    };
    using Content = std::variant<Verified, Failed>;

    explicit Outcome(Content content) : content_(std::move(content)) {}
    Content content_;
  };

  SourceFile file;
  /// Checksum of the file as read while copying, lowercase hexadecimal; none when it failed before.
  std::optional<std::string> hash;
  std::vector<Outcome> outcomes;  ///< one per destination, in the plan's order
};

/// What became of the card image of a run.
struct CardImageResult {
  class Outcome {
   public:
    static Outcome verified() { return {}; }
    static Outcome failed(Reason reason) {
      Outcome outcome;
      outcome.failure_ = std::move(reason);
      return outcome;
    }
    [[nodiscard]] bool isVerified() const { return !failure_; }
    /// The reason of a failure, as long as this outcome stays; null when verified.
    [[nodiscard]] const Reason* reason() const { return failure_ ? &*failure_ : nullptr; }
    friend bool operator==(const Outcome&, const Outcome&) = default;

   private:
    std::optional<Reason> failure_;
  };

  PlatformKit::Path url;
  std::uint64_t size = 0;            ///< bytes in the image
  std::optional<std::string> hash;   ///< lowercase hexadecimal, by the plan's algorithm
  std::size_t unreadableBlocks = 0;  ///< blocks of the card stored as zeros
  Outcome outcome = Outcome::failed(Reason(Reason::Kind::notCopied));
  std::string relativePath;  ///< below its destination folder
};

/// A record that a drive with verified files should have got and has not.
struct MissingRecord {
  enum class Kind { report, hashList };
  Kind kind;
  std::size_t destination;
  Reason reason;
};

/// The outcome of a run that came to its end. What it amounts to is in Verdict.
struct OffloadResult {
  OffloadPlan plan;
  std::vector<OffloadedFile> files;  ///< one per scanned file, in scan order
  std::vector<UnreadableItem>
      unreadable;  ///< what the scan could not read; not part of allVerified
  PlatformKit::Date started{};
  PlatformKit::Date finished{};
  /// Destinations that the run gave up on, with what made it give up.
  std::map<std::size_t, Reason> destinationErrors;
  /// Destinations whose copies were read back through the computer's cache, which may not have
  /// asked the drive; see PlatformKit::VolumeFacts::readsThroughCache.
  std::set<std::size_t> readThroughCache;
  std::vector<PlatformKit::Path> mhlFiles;  ///< hash lists written, in destination order
  std::vector<PlatformKit::Path> reports;   ///< reports written, in destination order
  std::vector<MissingRecord> missingRecords;
  std::optional<CardImageResult> cardImage;

  /// Sum of the sizes of all files, whatever became of them, in bytes.
  [[nodiscard]] std::uint64_t totalBytes() const;
  /// No file failed on any destination; true also without files. No more than that: see Verdict.
  [[nodiscard]] bool allVerified() const;
  /// The files that failed on at least one destination, in order; valid as long as this result.
  [[nodiscard]] std::vector<const OffloadedFile*> failedFiles() const;
  /// How many files are verified on a destination, which must be one of the plan's.
  [[nodiscard]] std::size_t verifiedCount(std::size_t destination) const;
};

}  // namespace OffloadKit
