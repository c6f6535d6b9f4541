#include "OffloadKit/Copying/CopyTargets.h"

#include "OffloadKit/Transfer/Links.h"
#include "PlatformKit/Paths.h"

#include <algorithm>
#include <cerrno>

namespace OffloadKit {
namespace {

using PlatformKit::FileSystem;
using PlatformKit::Path;

bool isCopyOf(const SourceFile& file, const PlatformKit::ItemStatus& there) {
  return there.kind == PlatformKit::ItemKind::regularFile && there.size == file.size &&
         std::chrono::abs(there.modified - file.modified) < std::chrono::seconds(2);
}

}  // namespace

bool alreadyThere(FileSystem& fileSystem, const SourceFile& file, const Path& destination) {
  const auto answer = fileSystem.status(destination / file.relativePath);
  return answer.ok() && isCopyOf(file, answer.value());
}

TargetChoice chooseTarget(FileSystem& fileSystem, const SourceFile& file, const Path& source,
                          const Path& destination, const std::string& temporary,
                          KnownFolder& folder) {
  Path final = destination / file.relativePath;
  const Path parent = final.parent_path();
  if (folder.path != parent) folder = {parent, leadsOut(fileSystem, final, destination), false};
  if (folder.leadsOut) {
    return {SkipTarget{}, Reason(Reason::Kind::linkLeadsOut)};
  }
  if (const auto there = fileSystem.status(final); there.ok()) {
    if (!isCopyOf(file, there.value())) {
      return {SkipTarget{}, Reason(Reason::Kind::otherFileThere)};
    }
    const auto original = fileSystem.status(source);
    if (original.ok() && original.value().identity == there.value().identity) {
      return {SkipTarget{}, Reason(Reason::Kind::isTheCardsOwn)};
    }
    return {ResumeTarget{std::move(final)}, {}};
  }
  if (!folder.exists) {
    const int error = createFolders(fileSystem, parent);
    if (error != 0) return {SkipTarget{}, {}, error};
    folder.exists = true;
  }
  auto copy = PendingCopy::create(fileSystem, destination / temporary, std::move(final));
  if (!copy.ok()) return {SkipTarget{}, {}, copy.error()};
  return {WriteTarget{std::move(copy.value())}, {}};
}

}  // namespace OffloadKit
