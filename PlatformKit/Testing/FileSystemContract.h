#pragma once

#include "PlatformKit/AlignedBuffer.h"
#include "PlatformKit/FileSystem.h"
#include "PlatformKit/Posix/UniqueFd.h"
#include "PlatformKit/Testing/TempFolder.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <functional>
#include <future>
#include <map>
#include <memory>
#include <ostream>
#include <span>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace PlatformKit::Testing {

/// An implementation of FileSystem that is to keep what the interface promises.
struct FileSystemSubject {
  const char* name;
  std::unique_ptr<FileSystem> (*make)();

  friend void PrintTo(const FileSystemSubject& subject, std::ostream* out) { *out << subject.name; }
};

/// What every file system must do. Include this in one source of a test program and instantiate it
/// with the subjects.
class FileSystemContract : public ::testing::TestWithParam<FileSystemSubject> {
 protected:
  static constexpr std::array kModes = {ReadMode::streamed, ReadMode::pastCache};

  [[nodiscard]] Path at(const Path& name) const { return temp_.path() / name; }

  /// One item of every kind that can hold a name already.
  std::vector<Path> obstacles() {
    writeFile(at("file"), "old");
    std::filesystem::create_directory(at("folder"));
    std::filesystem::create_symlink("file", at("link"));
    std::filesystem::create_symlink("nowhere", at("dangling"));
    EXPECT_EQ(mkfifo(at("pipe").c_str(), 0600), 0);
    return {at("file"), at("folder"), at("link"), at("dangling"), at("pipe")};
  }

  /// The names of `obstacles` hold what they held, and nothing came to be behind the dangling link.
  void expectObstaclesUntouched() {
    EXPECT_EQ(tree(temp_.path()),
              (std::vector<std::string>{"dangling", "file", "folder/", "link", "pipe"}));
    EXPECT_EQ(readFile(at("link")), "old");
  }

  std::unique_ptr<ReadableFile> open(const Path& path, ReadMode mode) {
    return std::move(fileSystem_->openForReading(path, mode).value());
  }

  /// Everything from `offset` to the end, asked for in pieces of the buffer's size.
  static std::string contentFrom(ReadableFile& file, std::span<std::byte> buffer,
                                 std::uint64_t offset = 0) {
    std::string content;
    for (;;) {
      const std::size_t count = file.readAt(buffer, offset + content.size()).value();
      if (count == 0) return content;
      content.append(reinterpret_cast<const char*>(buffer.data()), count);
    }
  }

  /// How many of several threads that call at the same moment are answered 0.
  static int winnersOf(const std::function<int(int thread)>& call) {
    std::atomic<int> winners = 0;
    std::atomic<bool> go = false;
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < 8; ++thread) {
      threads.emplace_back([&, thread] {
        while (!go) std::this_thread::yield();
        if (call(thread) == 0) ++winners;
      });
    }
    go = true;
    threads.clear();
    return winners;
  }

  const TempFolder temp_;
  const std::unique_ptr<FileSystem> fileSystem_ = GetParam().make();
};

TEST_P(FileSystemContract, StatusIsAboutTheItemItselfAndNotWhatALinkPointsTo) {
  const Date before = SystemClock().now() - std::chrono::minutes(1);
  obstacles();
  const std::map<std::string, ItemKind> kinds = {{"file", ItemKind::regularFile},
                                                 {"folder", ItemKind::folder},
                                                 {"link", ItemKind::symbolicLink},
                                                 {"dangling", ItemKind::symbolicLink},
                                                 {"pipe", ItemKind::other}};
  for (const auto& [name, kind] : kinds) {
    const ItemStatus status = fileSystem_->status(at(name)).value();
    EXPECT_EQ(status.kind, kind) << name;
    for (const Date date : {status.modified, status.created.value_or(status.modified)}) {
      EXPECT_GT(date, before) << name;
      EXPECT_LT(date, before + std::chrono::minutes(2)) << name;
    }
  }
  EXPECT_EQ(fileSystem_->status(at("file")).value().size, 3U);
  EXPECT_EQ(fileSystem_->status(at("missing")).error(), ENOENT);
  EXPECT_EQ(fileSystem_->status(at("file/below")).error(), ENOTDIR);
  EXPECT_EQ(fileSystem_->status(at(std::string(256, 'n'))).error(), ENAMETOOLONG);
}

TEST_P(FileSystemContract, ResolveLeadsToThePlaceItselfThroughLinksAndDots) {
  writeFile(at("real/deep/file"), "");
  std::filesystem::create_directory_symlink("real/deep", at("way"));
  std::filesystem::create_symlink("nowhere", at("dangling"));
  const Path winding = temp_.path().native() + "//real/../way/.././deep//file";
  EXPECT_EQ(fileSystem_->resolve(winding).value(), at("real/deep/file"));
  EXPECT_EQ(fileSystem_->resolve(at("way")).value(), at("real/deep"));
  EXPECT_EQ(fileSystem_->resolve(at("missing")).error(), ENOENT);
  EXPECT_EQ(fileSystem_->resolve(at("dangling")).error(), ENOENT);
}

TEST_P(FileSystemContract, ListTellsEveryNameByteForByteWithTheStatusOfTheItemItself) {
  const std::vector<std::string> odd = {
      ".hidden",  "..two dots", "new\nline",           "back\\slash",        "-",
      "\xFF\xC0", "Cafe\u0301", "Caf\u00E9\U0001F4F7", std::string(255, 'n')};
  std::map<std::string, std::uint64_t> written;
  for (const std::string& name : odd) written[name] = name.size();
  for (int i = 0; i < 1500; ++i) written["clip " + std::to_string(i)] = 0;  // more than one call
  for (const auto& [name, size] : written) writeFile(at("card") / name, pattern(size));

  const FolderListing listing = fileSystem_->list(at("card")).value();
  EXPECT_EQ(listing.error, 0);
  std::map<std::string, std::uint64_t> listed;
  for (const FolderEntry& entry : listing.entries) {
    EXPECT_TRUE(listed.emplace(entry.name, entry.status.value().size).second) << entry.name;
  }
  EXPECT_EQ(listed, written);

  std::filesystem::create_directory(at("folder"));
  EXPECT_TRUE(fileSystem_->list(at("folder")).value().entries.empty());
  std::filesystem::create_directory_symlink("../card", at("folder/link"));
  EXPECT_EQ(fileSystem_->list(at("folder")).value().entries.at(0).status.value().kind,
            ItemKind::symbolicLink);
  ASSERT_EQ(mkfifo(at("pipe").c_str(), 0600), 0);
  EXPECT_EQ(fileSystem_->list(at("pipe")).error(), ENOTDIR);
  EXPECT_EQ(fileSystem_->list(at("missing")).error(), ENOENT);
}

TEST_P(FileSystemContract, CreateFileMakesAnEmptyFileAndNeverOverAnotherItem) {
  const auto items = obstacles();
  // With a reader, a pipe that is opened by mistake does not block the failing test.
  const UniqueFd reader(::open(at("pipe").c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  for (const Path& taken : items) {
    EXPECT_EQ(fileSystem_->createFile(taken).error(), EEXIST) << taken;
  }
  expectObstaclesUntouched();
  EXPECT_EQ(fileSystem_->createFile(at("missing/new")).error(), ENOENT);
  EXPECT_EQ(fileSystem_->createFile(at("file/new")).error(), ENOTDIR);

  const mode_t usual = umask(0);
  EXPECT_TRUE(fileSystem_->createFile(at("new")).ok());
  umask(usual);
  EXPECT_EQ(readFile(at("new")), "");
  EXPECT_EQ(std::filesystem::status(at("new")).permissions(), std::filesystem::perms{0644});

  EXPECT_EQ(winnersOf([&](int) { return fileSystem_->createFile(at("wanted")).error(); }), 1);
}

TEST_P(FileSystemContract, WhatIsWrittenPieceByPieceIsTheContent) {
  const std::string content = pattern(1'500'001);
  const auto bytes = std::as_bytes(std::span(content));
  {
    const auto file = std::move(fileSystem_->createFile(at("new")).value());
    for (std::size_t done = 0; done < bytes.size();) {
      const auto rest = bytes.subspan(done, std::min<std::size_t>(70'001, bytes.size() - done));
      const std::size_t count = file->write(rest).value();
      ASSERT_GT(count, 0U);
      EXPECT_EQ(file->startWriteback(done, count), 0);
      done += count;
      if (done > bytes.size() / 2) {
        EXPECT_EQ(file->finishWriteback(0, done), 0);
      }
    }
    EXPECT_EQ(file->flush(), 0);
  }
  EXPECT_TRUE(readFile(at("new")) == content);
}

TEST_P(FileSystemContract, CreateFolderMakesOneFolderAndNeverOverAnotherItem) {
  for (const Path& taken : obstacles()) {
    EXPECT_EQ(fileSystem_->createFolder(taken), EEXIST) << taken;
  }
  expectObstaclesUntouched();
  EXPECT_EQ(fileSystem_->createFolder(at("missing/new")), ENOENT);
  EXPECT_EQ(fileSystem_->createFolder(at("file/new")), ENOTDIR);
  EXPECT_EQ(fileSystem_->createFolder(at("folder/new")), 0);
  EXPECT_TRUE(std::filesystem::is_empty(at("folder/new")));
}

TEST_P(FileSystemContract, MoveGivesAFileItsNewNameAndNeverReplacesAnotherItem) {
  auto taken = obstacles();
  writeFile(at("part"), "new");
  for (const Path& name : taken) {
    EXPECT_EQ(fileSystem_->moveWithoutReplacing(at("part"), name), EEXIST) << name;
  }
  EXPECT_EQ(readFile(at("part")), "new");
  EXPECT_EQ(fileSystem_->moveWithoutReplacing(at("part"), at("missing/part")), ENOENT);
  EXPECT_EQ(fileSystem_->moveWithoutReplacing(at("missing"), at("new")), ENOENT);
  EXPECT_EQ(fileSystem_->moveWithoutReplacing(at("part"), at("folder/whole")), 0);
  EXPECT_EQ(readFile(at("folder/whole")), "new");
  std::filesystem::remove(at("folder/whole"));
  expectObstaclesUntouched();

  for (int i = 0; i < 8; ++i) writeFile(at("race") / std::to_string(i), "");
  EXPECT_EQ(winnersOf([&](int thread) {
              return fileSystem_->moveWithoutReplacing(at("race") / std::to_string(thread),
                                                       at("race/winner"));
            }),
            1);
  EXPECT_EQ(tree(at("race")).size(), 8U);
}

TEST_P(FileSystemContract, RemoveFileTakesAwayTheItemItselfButNoFolder) {
  obstacles();
  EXPECT_NE(fileSystem_->removeFile(at("folder")), 0);
  EXPECT_EQ(fileSystem_->removeFile(at("missing")), ENOENT);
  EXPECT_EQ(fileSystem_->removeFile(at("link")), 0);
  EXPECT_EQ(fileSystem_->removeFile(at("dangling")), 0);
  EXPECT_EQ(tree(temp_.path()), (std::vector<std::string>{"file", "folder/", "pipe"}));
  EXPECT_EQ(fileSystem_->removeFile(at("file")), 0);
  EXPECT_EQ(tree(temp_.path()), (std::vector<std::string>{"folder/", "pipe"}));
}

TEST_P(FileSystemContract, OnlyARegularFileThatIsNoLinkCanBeRead) {
  obstacles();
  writeFile(at("folder/inner"), "inner");
  std::filesystem::create_directory_symlink("folder", at("way"));
  std::vector<std::byte> buffer(16);
  for (const ReadMode mode : kModes) {
    EXPECT_EQ(fileSystem_->openForReading(at("link"), mode).error(), ELOOP);
    EXPECT_EQ(fileSystem_->openForReading(at("dangling"), mode).error(), ELOOP);
    EXPECT_EQ(fileSystem_->openForReading(at("missing"), mode).error(), ENOENT);
    EXPECT_EQ(contentFrom(*open(at("way/inner"), mode), buffer), "inner");
    for (const auto& [other, error] :
         {std::pair(at("folder"), EISDIR), {at("pipe"), EOPNOTSUPP}, {"/dev/null", EOPNOTSUPP}}) {
      auto opening = std::async(std::launch::async, [this, mode, path = other] {
        return fileSystem_->openForReading(path, mode).error();
      });
      EXPECT_EQ(opening.wait_for(std::chrono::seconds(20)), std::future_status::ready);
      // Somebody at the other end frees a reader that waits, so that the failed test ends.
      const UniqueFd writer(::open(at("pipe").c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC));
      EXPECT_EQ(opening.get(), error) << other;
    }
  }
}

TEST_P(FileSystemContract, ReadingGivesTheContentWhateverTheSizeOffsetAndBuffer) {
  AlignedBuffer memory(std::size_t{256} * 1024);
  const std::vector<std::span<std::byte>> buffers = {
      memory.bytes(), memory.bytes().first(4096), memory.bytes().first(65'537),
      memory.bytes().subspan(3), memory.bytes().subspan(512, 8192)};
  for (const std::size_t size : {0U, 1U, 511U, 4095U, 4096U, 4097U, 65'536U, 300'001U}) {
    const std::string content = pattern(size);
    const Path path = at(std::to_string(size));
    writeFile(path, content);
    for (const ReadMode mode : kModes) {
      for (std::size_t i = 0; i < buffers.size(); ++i) {
        for (const std::size_t offset : {0U, 1U, 4096U, 200'000U}) {
          const auto file = open(path, mode);
          EXPECT_TRUE(contentFrom(*file, buffers[i], offset) ==
                      content.substr(std::min(offset, size)))
              << "size " << size << " mode " << int(mode) << " buffer " << i << " at " << offset;
          for (const std::uint64_t behind : {size, size + 1, std::size_t{1} << 40U}) {
            EXPECT_EQ(file->readAt(buffers[i], behind).value(), 0U);
          }
        }
      }
    }
  }
}

TEST_P(FileSystemContract, SeveralThreadsReadOneFileAtOnceAlsoAtOddPlaces) {
  const std::string content = pattern(2'000'003);
  writeFile(at("file"), content);
  for (int round = 0; round < 10; ++round) {
    const auto file = open(at("file"), round % 2 == 0 ? ReadMode::streamed : ReadMode::pastCache);
    const int unharmed = winnersOf([&](int thread) {
      AlignedBuffer buffer(std::size_t{64} * 1024);
      const std::size_t odd = thread < 4 ? 0 : 1;
      for (std::size_t piece = static_cast<std::size_t>(thread) % 4; piece < 24; piece += 4) {
        const std::size_t offset = piece * buffer.bytes().size() + odd;
        const auto count = file->readAt(buffer.bytes(), offset);
        if (!count.ok()) return count.error();
        const std::string_view read(reinterpret_cast<char*>(buffer.bytes().data()), count.value());
        if (read.empty() || content.compare(offset, read.size(), read) != 0) return EIO;
      }
      return 0;
    });
    EXPECT_EQ(unharmed, 8) << "round " << round;
  }
}

TEST_P(FileSystemContract, DatesKeepTheirNanosecondsAndLeaveTheAccessDateAlone) {
  using std::chrono::nanoseconds;
  obstacles();
  const auto accessed = [&](const char* name) {
    struct stat status {};
    EXPECT_EQ(lstat(at(name).c_str(), &status), 0);
    return std::pair(status.st_atim.tv_sec, status.st_atim.tv_nsec);
  };
  const auto modified = [&](const char* name) {
    return fileSystem_->status(at(name)).value().modified;
  };
  const Date untouched = modified("file");
  for (const char* name : {"dangling", "link", "folder", "file"}) {
    const auto access = accessed(name);
    for (const Date date : {Date(nanoseconds(1'696'688'725'123'456'789)), Date(nanoseconds(-1)),
                            Date(nanoseconds(-86'400'000'000'001)), Date(nanoseconds(0))}) {
      EXPECT_EQ(fileSystem_->setDates(at(name), date, std::nullopt), 0);
      EXPECT_EQ(modified(name), date) << name;
    }
    EXPECT_EQ(accessed(name), access) << name;
    if (std::string_view(name) == "link") {
      EXPECT_EQ(modified("file"), untouched);
    }
  }
  EXPECT_EQ(fileSystem_->setDates(at("missing"), Date(), std::nullopt), ENOENT);

  const Date shot(nanoseconds(1'000'000'000'000'000'001));
  {
    const auto file = std::move(fileSystem_->createFile(at("new")).value());
    const auto access = accessed("new");
    EXPECT_EQ(file->write(std::as_bytes(std::span("content"))).value(), 8U);
    EXPECT_EQ(file->setDates(shot, shot), 0);
    EXPECT_EQ(file->flush(), 0);
    EXPECT_EQ(accessed("new"), access);
  }
  EXPECT_EQ(modified("new"), shot);
}

TEST_P(FileSystemContract, FlushingAndCheckingAFolderSucceedsAndTellsOfAMissingOne) {
  writeFile(at("folder/file"), "");
  EXPECT_EQ(fileSystem_->flushFolder(at("folder")), 0);
  EXPECT_EQ(fileSystem_->flushFolder(at("missing")), ENOENT);
  EXPECT_EQ(fileSystem_->flushVolume(at("folder")), 0);
  EXPECT_EQ(fileSystem_->flushVolume(at("missing")), ENOENT);
  EXPECT_EQ(fileSystem_->checkWritable(at("folder")), 0);
  EXPECT_EQ(fileSystem_->checkWritable(at("folder/file")), 0);
  EXPECT_EQ(fileSystem_->checkWritable(at("missing")), ENOENT);
}

TEST_P(FileSystemContract, WhatTheUserMayNotDoIsDenied) {
  if (geteuid() == 0) GTEST_SKIP() << "nothing is denied to the administrator";
  using std::filesystem::perms;
  writeFile(at("closed/file"), "");
  writeFile(at("fixed/file"), "");
  writeFile(at("secret"), "");
  std::filesystem::permissions(at("closed"), perms::none);
  std::filesystem::permissions(at("fixed"), perms::owner_read | perms::owner_exec);
  std::filesystem::permissions(at("secret"), perms::none);
  EXPECT_EQ(fileSystem_->list(at("closed")).error(), EACCES);
  EXPECT_EQ(fileSystem_->status(at("closed/file")).error(), EACCES);
  EXPECT_EQ(fileSystem_->resolve(at("closed/file")).error(), EACCES);
  for (const ReadMode mode : kModes) {
    EXPECT_EQ(fileSystem_->openForReading(at("secret"), mode).error(), EACCES);
  }
  EXPECT_EQ(fileSystem_->createFile(at("fixed/new")).error(), EACCES);
  EXPECT_EQ(fileSystem_->createFolder(at("fixed/new")), EACCES);
  EXPECT_EQ(fileSystem_->moveWithoutReplacing(at("fixed/file"), at("fixed/new")), EACCES);
  EXPECT_EQ(fileSystem_->removeFile(at("fixed/file")), EACCES);
  EXPECT_EQ(fileSystem_->checkWritable(at("fixed")), EACCES);
  EXPECT_EQ(fileSystem_->checkWritable(at("secret")), EACCES);
}

TEST_P(FileSystemContract, CreateFoldersMakesWhatIsMissingAndAcceptsWhatIsThere) {
  obstacles();
  std::filesystem::create_directory_symlink("folder", at("way"));
  EXPECT_EQ(createFolders(*fileSystem_, at("way/a/b/")), 0);
  EXPECT_TRUE(std::filesystem::is_directory(at("folder/a/b")));
  EXPECT_EQ(createFolders(*fileSystem_, at("folder/a/b")), 0);
  EXPECT_EQ(createFolders(*fileSystem_, at("way")), 0);
  EXPECT_EQ(createFolders(*fileSystem_, at("file")), EEXIST);
  EXPECT_EQ(createFolders(*fileSystem_, at("link")), EEXIST);
  EXPECT_EQ(createFolders(*fileSystem_, at("dangling")), EEXIST);
  EXPECT_EQ(createFolders(*fileSystem_, at("file/a/b")), ENOTDIR);
  EXPECT_NE(createFolders(*fileSystem_, at("dangling/a")), 0);
  EXPECT_EQ(winnersOf([&](int) { return createFolders(*fileSystem_, at("many/a/b/c")); }), 8);

  EXPECT_TRUE(isFolder(*fileSystem_, at("way")));
  for (const char* other : {"file", "link", "dangling", "pipe", "missing"}) {
    EXPECT_FALSE(isFolder(*fileSystem_, at(other))) << other;
  }
}

}  // namespace PlatformKit::Testing
