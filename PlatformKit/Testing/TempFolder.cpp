#include "PlatformKit/Testing/TempFolder.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>

namespace PlatformKit::Testing {

TempFolder::TempFolder() {
  std::string name =
      std::filesystem::canonical(std::filesystem::temp_directory_path()) / "zephrimark-XXXXXX";
  if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
  path_ = name;
}

TempFolder::~TempFolder() {
  std::error_code ignored;
  for (std::filesystem::recursive_directory_iterator it(path_, ignored), end; it != end;
       it.increment(ignored)) {
    if (it->is_directory(ignored) && !it->is_symlink(ignored)) {
      std::filesystem::permissions(it->path(), std::filesystem::perms::owner_all, ignored);
    }
  }
  std::filesystem::remove_all(path_, ignored);
}

void writeFile(const Path& path, std::string_view content) {
  std::filesystem::create_directories(path.parent_path());
  std::ofstream stream(path, std::ios::binary | std::ios::trunc);
  stream.write(content.data(), static_cast<std::streamsize>(content.size()));
  if (!stream.flush()) throw std::runtime_error("cannot write " + path.native());
}

std::string readFile(const Path& path) {
  std::ifstream stream(path, std::ios::binary);
  if (!stream) throw std::runtime_error("cannot read " + path.native());
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

Path programForEverybody(const Path& program, const TempFolder& folder) {
  const Path copy = folder.path() / program.filename();
  std::filesystem::permissions(folder.path(), std::filesystem::perms(0755));
  std::filesystem::copy_file(program, copy, std::filesystem::copy_options::overwrite_existing);
  std::filesystem::permissions(copy, std::filesystem::perms(0755));
  return copy;
}

std::vector<std::string> tree(const Path& folder) {
  std::vector<std::string> items;
  for (const auto& item : std::filesystem::recursive_directory_iterator(folder)) {
    items.push_back(item.path().lexically_relative(folder).native() +
                    (item.is_directory() ? "/" : ""));
  }
  std::sort(items.begin(), items.end());
  return items;
}

std::string pattern(std::size_t size, unsigned seed) {
  std::minstd_rand random(seed);
  std::string bytes(size, '\0');
  for (char& byte : bytes) byte = static_cast<char>(random() >> 8);
  return bytes;
}

}  // namespace PlatformKit::Testing
