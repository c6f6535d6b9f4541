#include "ZephrimarkOffload/Demo/Footage.h"

#include <fmt/format.h>

namespace ZephrimarkOffload::Demo {
namespace {

constexpr std::size_t kFilesPerReel = 60;

std::string nameOf(std::size_t index) {
  return fmt::format("CLIPS/A{:03}/A{:03}C{:03}_261007.MXF", index / kFilesPerReel + 1,
                     index / kFilesPerReel + 1, index % kFilesPerReel + 1);
}

// Long and short takes in turn.
std::uint64_t weightOf(std::size_t index) {
  return 20 + index * 7919 % 97;
}

}  // namespace

std::vector<OffloadKit::SourceFile> footage(const SourceCount& content) {
  std::uint64_t weights = 0;
  for (std::size_t i = 0; i < content.files; ++i) weights += weightOf(i);
  std::vector<OffloadKit::SourceFile> files;
  std::uint64_t left = content.bytes;
  for (std::size_t i = 0; i < content.files; ++i) {
    const bool isLast = i + 1 == content.files;
    const std::uint64_t size = isLast ? left : content.bytes / weights * weightOf(i);
    left -= size;
    files.push_back({nameOf(i), size, {}, std::nullopt});
  }
  return files;
}

}  // namespace ZephrimarkOffload::Demo
