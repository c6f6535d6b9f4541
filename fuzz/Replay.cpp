#include "fuzz/Input.h"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

namespace {

std::vector<std::filesystem::path> filesIn(const std::filesystem::path& folder) {
  std::vector<std::filesystem::path> files;
  for (const auto& item : std::filesystem::recursive_directory_iterator(folder)) {
    if (item.is_regular_file()) files.push_back(item.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

void replay(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
  // Named first, for the case that it ends the program.
  std::cout << file.native() << std::endl;
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
}

}  // namespace

/// Runs one fuzzer's function over the files of a folder, without the fuzzer. Ends with an error
/// when a property does not hold, and when there is no file.
int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "Name the folder of the corpus.\n";
    return 2;
  }
  try {
    const auto files = filesIn(argv[1]);
    for (const auto& file : files) replay(file);
    return files.empty() ? 1 : 0;
  } catch (const std::exception& error) {
    std::cerr << error.what() << "\n";
    return 1;
  }
}
