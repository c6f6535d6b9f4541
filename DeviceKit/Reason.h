#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace DeviceKit {

/// Why something failed or was refused: a kind, the names and numbers that belong to it, and the
/// reason behind it if there is one. Records and machines read its sentence in English, people read
/// it in their language (`shown` in OffloadKit/Wording); both are made of one table of patterns, in
/// Reason.cpp, and nothing reads a sentence back. It lies here, with the sentences of the engine,
/// since devices are the lowest that give reasons and a second table would be a second place to
/// translate.
///
/// A value; any thread.
class Reason {
 public:
  /// The sentences are in Reason.cpp, in this order. Behind each is what it takes.
  enum class Kind {
    // One copy
    notCopied,
    copyUnreadable,
    copyDiffers,
    linkLeadsOut,    ///< out of the destination
    otherFileThere,  ///< with the copy's name
    isTheCardsOwn,   ///< the file there is the original
    // A drive; see ofDrive
    noPermission,
    writeError,
    disconnected,
    driveFull,
    // The card
    cardUnreadable,  ///< a reason
    filesNotListed,
    otherCardThere,
    changedSize,      ///< the file's path
    readDifferently,  ///< the file's path
    // The card image
    imageThere,
    cardStopped,
    imageUnreadable,
    imageDiffers,
    // A device
    cannotOpen,   ///< path, a reason
    mayNotRead,   ///< path
    notReadable,  ///< path
    readFailed,   ///< offset, a reason
    // Ejecting: the card's name
    unmountedOnly,
    cardInUse,
    ejectDeclined,
    nobodyEjects,
    ejectFailed,
    noSingleDisk,
    notACard,
    notMounted,
    notAllVerified,    ///< nothing
    resultNotWritten,  ///< nothing
    // A run: the destination's name
    onTheCard,
    notAvailable,
    inUse,
    notEnoughSpace,  ///< name, Bytes needed, Bytes available
    noCardImage,     ///< a reason
    noFiles,         ///< nothing
    stopped,         ///< nothing
    // See the functions of these names
    about,
    ofSystem,
    fromOutside,
  };
  /// A size, said as people read sizes.
  struct Bytes {
    std::uint64_t count;
  };
  using Argument = std::variant<std::string, Bytes>;

  /// What the kind takes, in the order of its sentence; `behind` is always the last.
  explicit Reason(Kind kind, std::vector<Argument> arguments = {});
  Reason(Kind kind, std::vector<Argument> arguments, Reason behind);

  /// What the system's error number means when it comes from a drive that is written to:
  /// noPermission, writeError, disconnected, driveFull, or the system's own text. A number that the
  /// system does not know counts as EIO.
  static Reason ofDrive(int error);
  /// The system's own text for an error number, such as "Input/output error".
  static Reason ofSystem(int error);
  /// A sentence that somebody else made, such as a library's exception, as it is. Shown in the
  /// user's language where it happens to be one of the system's texts.
  static Reason fromOutside(std::string sentence);
  /// "A.MOV: Input/output error".
  static Reason about(std::string name, Reason reason);

  /// How many things the kind takes, a reason counted in.
  static std::size_t takes(Kind kind);

  [[nodiscard]] Kind kind() const { return kind_; }
  /// The sentence as records have it, always English; the names in it are bytes as they are.
  [[nodiscard]] std::string english() const;

  /// How a language says what reasons are made of.
  struct Language {
    std::string (*text)(const std::string& english);  ///< a pattern, or a text of the system
    std::string (*size)(std::uint64_t bytes);
  };
  [[nodiscard]] std::string in(const Language& language) const;

  /// By the English sentence.
  friend bool operator==(const Reason& a, const Reason& b) { return a.english() == b.english(); }

 private:
  Kind kind_;
  int error_ = 0;  // of ofSystem
  std::vector<Argument> arguments_;
  std::shared_ptr<const Reason> behind_;
};

}  // namespace DeviceKit
