#pragma once

#include "PlatformKit/FileSystem.h"

#include <memory>
#include <optional>

namespace OffloadKit {

/// A copy under its temporary name in a held folder. Removes its file unless it was committed, on
/// every way out. Move-only; one thread at a time.
class PendingCopy {
 public:
  /// Makes the temporary file, in place of a leftover of that name. `temporary` and `final` are
  /// below `folder`, which outlives this object, in the same folder, which exists.
  static PlatformKit::Result<PendingCopy> create(PlatformKit::Folder& folder,
                                                 PlatformKit::Path temporary,
                                                 PlatformKit::Path final);

  PendingCopy(PendingCopy&& other) noexcept;
  PendingCopy& operator=(PendingCopy&&) = delete;
  /// A failure to remove the file is ignored: what is left is hidden, and the next run clears it.
  ~PendingCopy();

  /// Where it lies; not behind `commit`.
  [[nodiscard]] PlatformKit::Folder& folder() const { return *folder_; }
  /// Which file it is, under whatever name.
  [[nodiscard]] PlatformKit::ItemIdentity identity() const { return identity_; }
  /// Null once it was closed.
  [[nodiscard]] PlatformKit::WritableFile* file() { return file_.get(); }
  [[nodiscard]] const PlatformKit::Path& temporary() const { return temporary_; }
  [[nodiscard]] const PlatformKit::Path& final() const { return final_; }

  /// Closes the file, unless that is done.
  void close() { file_.reset(); }

  /// Gives the copy its final name; whatever has that name by now stays. Answers 0, or the error
  /// number; the temporary file then goes with this object. ESTALE when the temporary name is no
  /// longer this copy's: somebody else took it.
  [[nodiscard]] int commit();
  /// The modification date that the copy had when it was committed; none before.
  [[nodiscard]] std::optional<PlatformKit::Date> modified() const { return modified_; }
  /// As `commit`, but in place of a file that has that name.
  [[nodiscard]] int commitReplacing();

 private:
  [[nodiscard]] int checkIdentity();
  int committed(int error);
  PendingCopy(PlatformKit::Folder& folder, std::unique_ptr<PlatformKit::WritableFile> file,
              PlatformKit::ItemIdentity identity, PlatformKit::Path temporary,
              PlatformKit::Path final);

  // Null once the copy was committed or moved away: nothing is left to remove.
  PlatformKit::Folder* folder_;
  std::unique_ptr<PlatformKit::WritableFile> file_;
  PlatformKit::ItemIdentity identity_;
  PlatformKit::Path temporary_;
  PlatformKit::Path final_;
  std::optional<PlatformKit::Date> modified_;
};

}  // namespace OffloadKit
