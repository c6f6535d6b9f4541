#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <variant>

namespace OffloadKit {

/// Why a run could not start or was stopped. Its text is a full sentence for people, in English.
class OffloadError final : public std::exception {
 public:
  struct SourceUnreadable {
    std::string what;
    friend bool operator==(const SourceUnreadable&, const SourceUnreadable&) = default;
  };
  struct DestinationOnSource {
    std::string destination;
    friend bool operator==(const DestinationOnSource&, const DestinationOnSource&) = default;
  };
  struct DestinationUnavailable {
    std::string destination;
    friend bool operator==(const DestinationUnavailable&, const DestinationUnavailable&) = default;
  };
  struct DestinationInUse {
    std::string destination;
    friend bool operator==(const DestinationInUse&, const DestinationInUse&) = default;
  };
  struct NotEnoughSpace {
    std::string destination;
    std::uint64_t needed;     ///< bytes
    std::uint64_t available;  ///< bytes
    friend bool operator==(const NotEnoughSpace&, const NotEnoughSpace&) = default;
  };
  struct CardImageUnavailable {
    std::string reason;
    friend bool operator==(const CardImageUnavailable&, const CardImageUnavailable&) = default;
  };
  struct NoFiles {
    friend bool operator==(const NoFiles&, const NoFiles&) = default;
  };
  struct Cancelled {
    friend bool operator==(const Cancelled&, const Cancelled&) = default;
  };
  using Kind =
      std::variant<SourceUnreadable, DestinationOnSource, DestinationUnavailable, DestinationInUse,
                   NotEnoughSpace, CardImageUnavailable, NoFiles, Cancelled>;

  /// `what`: what could not be read, with the reason.
  static OffloadError sourceUnreadable(std::string what);
  /// The next four take the destination's display name.
  static OffloadError destinationOnSource(std::string destination);
  static OffloadError destinationUnavailable(std::string destination);
  /// Another offload, or another destination of this one, is the same folder.
  static OffloadError destinationInUse(std::string destination);
  static OffloadError notEnoughSpace(std::string destination, std::uint64_t needed,
                                     std::uint64_t available);
  static OffloadError cardImageUnavailable(std::string reason);
  static OffloadError noFiles();
  static OffloadError cancelled();

  [[nodiscard]] const Kind& kind() const { return kind_; }
  [[nodiscard]] bool isCancelled() const { return std::holds_alternative<Cancelled>(kind_); }
  [[nodiscard]] const std::string& errorDescription() const { return description_; }
  /// The sentence in the user's language.
  [[nodiscard]] std::string shownDescription() const;
  [[nodiscard]] const char* what() const noexcept override { return description_.c_str(); }

  friend bool operator==(const OffloadError& a, const OffloadError& b) {
    return a.kind_ == b.kind_;
  }

 private:
  explicit OffloadError(Kind kind);

  Kind kind_;
  std::string description_;
};

}  // namespace OffloadKit
