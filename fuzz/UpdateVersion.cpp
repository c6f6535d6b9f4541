#include "Updates/Version.h"
#include "fuzz/Input.h"

using Updates::Version;

/// Input: versions, with zero bytes between.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::vector<Version> versions;
  for (const auto part : Fuzz::partsOf(Fuzz::textOf(data, size), 5)) {
    const QString text = QString::fromUtf8(part.data(), static_cast<qsizetype>(part.size()));
    auto version = Version::parse(text);
    Fuzz::require(!version || text.size() <= 8 * 9 + 7 + 1 + 40, "a version has a bound");
    if (version) versions.push_back(std::move(*version));
  }
  for (const Version& one : versions) {
    Fuzz::require(!one.isBefore(one), "no version is before itself");
    for (const Version& two : versions) {
      Fuzz::require(!(one.isBefore(two) && two.isBefore(one)), "only one of two is before");
      for (const Version& three : versions) {
        Fuzz::require(!(one.isBefore(two) && two.isBefore(three)) || one.isBefore(three),
                      "the order goes on");
      }
    }
  }
  return 0;
}
