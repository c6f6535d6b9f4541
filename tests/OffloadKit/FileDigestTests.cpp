#include "OffloadKit/Transfer/FileDigest.h"
#include "PlatformKit/AlignedBuffer.h"
#include "tests/OffloadKit/OffloadFixture.h"

#include <cerrno>
#include <thread>

namespace OffloadKit {
namespace {

using HashKit::HashAlgorithm;

class Digest : public OffloadFixture {
 protected:
  static std::string expected(const std::string& content) {
    return HashKit::hash(HashAlgorithm::md5, std::as_bytes(std::span(content)));
  }
  PlatformKit::Result<std::string> digestWith(std::size_t threads, std::size_t piece) {
    FileDigest digest(fileSystem_, card_ / "file", HashAlgorithm::md5);
    std::vector<PlatformKit::AlignedBuffer> buffers;
    for (std::size_t i = 0; i < threads; ++i) buffers.emplace_back(piece);
    std::vector<std::thread> workers;
    for (auto& buffer : buffers) workers.emplace_back([&] { digest.work(buffer.bytes()); });
    for (auto& worker : workers) worker.join();
    return digest.result();
  }
};

TEST_F(Digest, isTheSameForAnyNumberOfThreadsAndAnySizeOfPieces) {
  for (const std::size_t size : std::vector<std::size_t>{0, 1, 4095, 4096, 4097, 8192, 100'000}) {
    const std::string content = pattern(size);
    addFile("file", content);
    for (std::size_t threads = 1; threads <= 3; ++threads) {
      EXPECT_EQ(digestWith(threads, 4096).value(), expected(content)) << size << " " << threads;
      EXPECT_EQ(digestWith(threads, 1000).value(), expected(content)) << size << " " << threads;
    }
    EXPECT_EQ(hashFile(fileSystem_, card_ / "file", HashAlgorithm::md5, 4096).value(),
              expected(content));
  }
}

TEST_F(Digest, neverTakesAFileOfAnotherSizeForTheExpectedOne) {
  const std::size_t sizes[] = {0, 1, 4095, 4096, 4097, 8191, 8192, 8193, 16'384, 20'000};
  PlatformKit::AlignedBuffer buffer(8192);
  for (const std::size_t size : sizes) {
    addFile("file", pattern(size));
    for (const std::size_t wanted : sizes) {
      FileDigest digest(fileSystem_, card_ / "file", HashAlgorithm::md5, wanted);
      digest.work(buffer.bytes());
      EXPECT_EQ(digest.result().value() == expected(pattern(wanted)), size == wanted)
          << size << " " << wanted;
    }
  }
}

TEST_F(Digest, goesOnAfterShortReads) {
  const std::string content = pattern(50'000);
  addFile("file", content);
  fileSystem_.setScript([](const CallInfo&) {
    Intervention intervention;
    intervention.limit = 1777;
    return intervention;
  });
  EXPECT_EQ(digestWith(2, 4096).value(), expected(content));
}

TEST_F(Digest, tellsTheErrorOfOpeningAndOfReadingAnywhereInTheFile) {
  EXPECT_EQ(digestWith(2, 4096).error(), ENOENT);
  addFile("file", pattern(100'000));
  for (const std::uint64_t bad : std::vector<std::uint64_t>{0, 12'288, 98'304}) {
    fileSystem_.setScript([bad](const CallInfo& info) {
      return Intervention{info.call == Call::read && info.offset == bad ? EIO : 0};
    });
    EXPECT_EQ(digestWith(1, 4096).error(), EIO) << bad;
    EXPECT_EQ(digestWith(3, 4096).error(), EIO) << bad;
  }
  EXPECT_EQ(fileSystem_.openFiles(), 0);
}

}  // namespace
}  // namespace OffloadKit
