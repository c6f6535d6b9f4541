#include "OffloadKit/Transfer/WholeFile.h"

#include "OffloadKit/Transfer/DurableNames.h"
#include "OffloadKit/Transfer/PendingCopy.h"
#include "OffloadKit/Transfer/Transfer.h"

#include <algorithm>
#include <cerrno>
#include <vector>

namespace OffloadKit {

using PlatformKit::Folder;
using PlatformKit::Path;

int writeWholeFile(Folder& within, const Path& path, const Path& temporary,
                   std::string_view content, Existing existing) {
  auto created = PendingCopy::create(within, temporary, path);
  if (!created.ok()) return created.error();
  PendingCopy& pending = created.value();
  int error = writeFully(*pending.file(), std::as_bytes(std::span(content)));
  if (error == 0) error = pending.file()->flush();
  if (error == 0) {
    error = existing == Existing::keep ? pending.commit() : pending.commitReplacing();
  }
  // Some file systems write a moved file's size only now; see VolumeFacts::moveKeepsContent.
  if (error == 0) error = pending.file()->flush();
  if (error == 0) error = flushNames(within, path.parent_path());
  return error;
}

int readWholeFile(Folder& within, const Path& path, std::uint64_t limit,
                  const std::function<bool(std::string_view, bool)>& take) {
  const auto status = within.status(path);
  if (!status.ok()) return status.error();
  // A list may name anything; a pipe or a device must not be waited for.
  if (status.value().kind != PlatformKit::ItemKind::regularFile) return ENOENT;
  auto opened = within.openForReading(path, PlatformKit::ReadMode::streamed);
  if (!opened.ok()) return opened.error();
  std::vector<std::byte> piece(std::size_t{256} * 1024);
  std::uint64_t offset = 0;
  for (;;) {
    const auto wanted = std::span(piece).first(
        static_cast<std::size_t>(std::min<std::uint64_t>(piece.size(), limit - offset)));
    const auto count = readFully(*opened.value(), wanted, offset);
    if (!count.ok()) return count.error();
    offset += count.value();
    const bool last = count.value() < piece.size() || offset == limit;
    const auto* text = reinterpret_cast<const char*>(piece.data());
    if (!take({text, count.value()}, last) || last) return 0;
  }
}

}  // namespace OffloadKit
