#include "PlatformKit/AlignedBuffer.h"
#include "PlatformKit/Linux/LinuxFileSystem.h"
#include "PlatformKit/Linux/LinuxFiles.h"
#include "PlatformKit/Testing/TempFolder.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <barrier>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/magic.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace PlatformKit::Testing {
namespace {

constexpr std::size_t kMiB = std::size_t{1024} * 1024;

/// A file as this process sees it in memory, without reading it.
class Mapping {
 public:
  explicit Mapping(const Path& path) : size_(std::filesystem::file_size(path)) {
    if (size_ == 0) return;
    const UniqueFd fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    memory_ = static_cast<char*>(mmap(nullptr, size_, PROT_READ, MAP_SHARED, fd.get(), 0));
    if (memory_ == MAP_FAILED) throw std::runtime_error("cannot map " + path.native());
  }
  ~Mapping() {
    if (size_ > 0) munmap(memory_, size_);
  }
  Mapping(const Mapping&) = delete;
  Mapping& operator=(const Mapping&) = delete;

  [[nodiscard]] std::size_t pages() const { return (size_ + kPage - 1) / kPage; }

  /// How many of the pages from `first` on are in the cache.
  [[nodiscard]] std::size_t cachedPages(std::size_t first = 0) const {
    std::vector<unsigned char> states(pages());
    if (size_ > 0 && mincore(memory_, size_, states.data()) != 0) return pages() + 1;
    return static_cast<std::size_t>(
        std::count_if(states.begin() + static_cast<std::ptrdiff_t>(first), states.end(),
                      [](unsigned char state) { return (state & 1U) != 0; }));
  }

  /// The kernel does not drop pages that a process has in use.
  void useAllPages() const {
    volatile char sum = 0;
    for (std::size_t at = 0; at < size_; at += kPage) sum = memory_[at];
    static_cast<void>(sum);
  }

 private:
  static inline const auto kPage = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  std::size_t size_;
  char* memory_ = nullptr;
};

class LinuxFiles : public ::testing::Test {
 protected:
  [[nodiscard]] Path at(const Path& name) const { return temp_.path() / name; }

  std::unique_ptr<ReadableFile> open(const Path& path, ReadMode mode) {
    return std::move(fileSystem_.openForReading(path, mode).value());
  }

  static std::string contentOf(ReadableFile& file) {
    AlignedBuffer buffer(kMiB / 4);
    std::string content;
    for (;;) {
      const std::size_t count = file.readAt(buffer.bytes(), content.size()).value();
      if (count == 0) return content;
      content.append(reinterpret_cast<const char*>(buffer.bytes().data()), count);
    }
  }

  const TempFolder temp_;
  LinuxFileSystem fileSystem_;
};

class LinuxFilesOnADrive : public LinuxFiles {
 protected:
  void SetUp() override {
    struct statfs facts {};
    ASSERT_EQ(statfs(temp_.path().c_str(), &facts), 0);
    if (facts.f_type == TMPFS_MAGIC || facts.f_type == RAMFS_MAGIC) {
      GTEST_SKIP() << "the temporary folder lies in memory: its cache is all there is of a file";
    }
    writeFile(at("probe"), "");
    if (!UniqueFd(::open(at("probe").c_str(), O_RDONLY | O_CLOEXEC | O_DIRECT)).valid()) {
      GTEST_SKIP() << "the temporary folder's file system has no reading past the cache";
    }
  }

  /// A file that is on the drive and wholly in the cache too.
  Path cachedFile(const std::string& content) {
    const Path path = at(std::to_string(content.size()));
    writeFile(path, content);
    const UniqueFd fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    EXPECT_EQ(fsync(fd.get()), 0);
    EXPECT_TRUE(readFile(path) == content);
    return path;
  }

  using Pages = std::vector<std::size_t>;

  /// What `observe` counts in the cache. The kernel drops pages when it likes, and now and then it
  /// holds one for a moment that it was told to drop; so what is not as expected is tried anew.
  static Pages observed(const Pages& expected, const std::function<Pages()>& observe) {
    Pages counts = observe();
    for (int retry = 0; retry < 5 && counts != expected; ++retry) counts = observe();
    return counts;
  }
};

TEST_F(LinuxFilesOnADrive, ReadingPastTheCacheDropsWhatItHeldAndLeavesNothingInIt) {
  for (const std::size_t size : {std::size_t{0}, std::size_t{1}, std::size_t{4095},
                                 std::size_t{4096}, std::size_t{4097}, kMiB + 1}) {
    const std::string content = pattern(size);
    const Pages expected = {Mapping(cachedFile(content)).pages(), 0, 0};
    EXPECT_EQ(observed(expected,
                       [&] {
                         const Path path = cachedFile(content);
                         const Mapping mapping(path);
                         Pages counts = {mapping.cachedPages()};
                         const auto file = open(path, ReadMode::pastCache);
                         counts.push_back(mapping.cachedPages());
                         EXPECT_TRUE(contentOf(*file) == content) << size;
                         counts.push_back(mapping.cachedPages());
                         return counts;
                       }),
              expected)
        << size;
  }
}

TEST_F(LinuxFilesOnADrive, ReadingPastTheCacheAsksTheDriveEvenIfTheCacheCouldAnswer) {
  const auto bytesFromDrives = [] {
    std::ifstream stream("/proc/self/io");
    for (std::string line; std::getline(stream, line);) {
      if (line.starts_with("read_bytes: ")) return std::stoull(line.substr(12));
    }
    return 0ULL;
  };
  if (bytesFromDrives() == 0 && !std::ifstream("/proc/self/io").good()) {
    GTEST_SKIP() << "this kernel does not count what a process reads from drives";
  }
  const std::string content = pattern(8 * kMiB);
  const Path path = cachedFile(content);
  const Mapping mapping(path);
  mapping.useAllPages();

  const auto start = bytesFromDrives();
  EXPECT_TRUE(contentOf(*open(path, ReadMode::streamed)) == content);
  const auto streamed = bytesFromDrives();
  EXPECT_TRUE(contentOf(*open(path, ReadMode::pastCache)) == content);
  EXPECT_LT(streamed - start, content.size() / 2);
  EXPECT_GE(bytesFromDrives() - streamed, content.size());
  EXPECT_GT(mapping.cachedPages(), mapping.pages() / 2);
}

TEST_F(LinuxFilesOnADrive, TheFirstOddReadPastTheCacheIsNotAnsweredFromWhatWasCached) {
  const Path path = cachedFile(pattern(4 * kMiB));
  const Mapping mapping(path);
  const Pages expected = {mapping.pages(), 0};
  EXPECT_EQ(observed(expected,
                     [&] {
                       const auto file = open(path, ReadMode::pastCache);
                       readFile(path);
                       Pages counts = {mapping.cachedPages()};
                       std::array<std::byte, 100> buffer{};
                       EXPECT_EQ(file->readAt(buffer, 1).value(), buffer.size());
                       counts.push_back(mapping.cachedPages(mapping.pages() / 2));
                       return counts;
                     }),
            expected);
}

TEST_F(LinuxFiles, TheFirstOddReadsPastTheCacheSucceedAlsoWhenTheyComeAtTheSameMoment) {
  writeFile(at("file"), pattern(300'001));
  std::unique_ptr<ReadableFile> file;
  std::atomic<int> failures = 0;
  {
    // Anew in every round: only the first odd read of a file finds it open past the cache.
    const auto reopen = [&]() noexcept { file = open(at("file"), ReadMode::pastCache); };
    reopen();
    std::barrier roundDone(8, reopen);
    std::vector<std::jthread> threads;
    for (std::uint64_t thread = 0; thread < 8; ++thread) {
      threads.emplace_back([&, thread] {
        std::array<std::byte, 100> buffer{};
        for (int round = 0; round < 1500; ++round) {
          if (!file->readAt(buffer, thread * 4096 + 1).ok()) ++failures;
          roundDone.arrive_and_wait();
        }
      });
    }
  }
  EXPECT_EQ(failures, 0);
}

TEST_F(LinuxFilesOnADrive, StreamingStartsFromTheDriveAndPrefetchesAndDiscardsWhatItIsToldTo) {
  const Path path = cachedFile(pattern(4 * kMiB));
  const Mapping mapping(path);
  const std::size_t half = mapping.pages() / 2;
  const Pages expected = {0, half, half, 2 * half, half, half};
  EXPECT_EQ(observed(expected,
                     [&] {
                       const auto file = open(path, ReadMode::streamed);
                       Pages counts = {mapping.cachedPages()};
                       file->prefetch(2 * kMiB, 2 * kMiB);
                       for (int i = 0; i < 300 && mapping.cachedPages(half) < half; ++i) {
                         std::this_thread::sleep_for(std::chrono::milliseconds(10));
                       }
                       counts.push_back(mapping.cachedPages(half));
                       counts.push_back(mapping.cachedPages());
                       EXPECT_EQ(contentOf(*file).size(), 4 * kMiB);
                       counts.push_back(mapping.cachedPages());
                       file->discard(0, 2 * kMiB);
                       counts.push_back(mapping.cachedPages());
                       counts.push_back(mapping.cachedPages(half));
                       return counts;
                     }),
            expected);
}

TEST_F(LinuxFilesOnADrive, FinishedWritebackLeavesTheCacheAndOnlyTheGivenRange) {
  const std::string content = pattern(8 * kMiB);
  const std::size_t pages = Mapping(cachedFile(content)).pages();
  const Pages expected = {pages, pages / 2, 0};
  EXPECT_EQ(observed(expected,
                     [&] {
                       const auto file = std::move(fileSystem_.createFile(at("new")).value());
                       EXPECT_EQ(file->write(std::as_bytes(std::span(content))).value(),
                                 content.size());
                       const Mapping mapping(at("new"));
                       Pages counts = {mapping.cachedPages()};
                       for (const std::uint64_t offset : {std::size_t{0}, 4 * kMiB}) {
                         EXPECT_EQ(file->startWriteback(offset, 4 * kMiB), 0);
                         EXPECT_EQ(file->finishWriteback(offset, 4 * kMiB), 0);
                         counts.push_back(mapping.cachedPages());
                       }
                       EXPECT_TRUE(readFile(at("new")) == content);
                       EXPECT_EQ(fileSystem_.removeFile(at("new")), 0);
                       return counts;
                     }),
            expected);
}

TEST_F(LinuxFiles, ReadingFilesAndFoldersKeepsTheirAccessDates) {
  const auto accessed = [&](const char* name) {
    struct stat status {};
    EXPECT_EQ(stat(at(name).c_str(), &status), 0);
    return status.st_atim.tv_sec;
  };
  // So old that also a volume mounted with "relatime" notes the next access.
  constexpr time_t kLongAgo = 1'000'000'000;
  const auto age = [&](const char* name) {
    const std::array<timespec, 2> dates = {timespec{kLongAgo, 0}, timespec{0, UTIME_OMIT}};
    EXPECT_EQ(utimensat(AT_FDCWD, at(name).c_str(), dates.data(), 0), 0);
  };
  writeFile(at("folder/file"), "content");
  age("folder/file");
  EXPECT_EQ(readFile(at("folder/file")), "content");
  if (accessed("folder/file") == kLongAgo) {
    GTEST_SKIP() << "the temporary folder's volume keeps no access dates";
  }
  age("folder/file");
  age("folder");
  for (const ReadMode mode : {ReadMode::streamed, ReadMode::pastCache}) {
    EXPECT_EQ(contentOf(*open(at("folder/file"), mode)), "content");
  }
  EXPECT_EQ(fileSystem_.list(at("folder")).value().entries.size(), 1U);
  EXPECT_EQ(accessed("folder/file"), kLongAgo);
  EXPECT_EQ(accessed("folder"), kLongAgo);
}

TEST_F(LinuxFiles, WhatBelongsToSomebodyElseIsReadAllTheSame) {
  if (geteuid() == 0) GTEST_SKIP() << "the administrator counts as everybody's owner";
  EXPECT_FALSE(fileSystem_.list("/").value().entries.empty());
  for (const ReadMode mode : {ReadMode::streamed, ReadMode::pastCache}) {
    EXPECT_EQ(contentOf(*open("/etc/passwd", mode)), readFile("/etc/passwd"));
  }
}

}  // namespace
}  // namespace PlatformKit::Testing
