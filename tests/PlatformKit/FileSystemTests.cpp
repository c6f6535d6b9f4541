#include "PlatformKit/Linux/LinuxFileSystem.h"
#include "PlatformKit/Testing/FaultyFileSystem.h"
#include "PlatformKit/Testing/FileSystemContract.h"

#include <bit>
#include <cerrno>
#include <functional>
#include <map>
#include <thread>

#include <gtest/gtest.h>

namespace PlatformKit::Testing {
namespace {

LinuxFileSystem realFileSystem;

const auto kSubjects = ::testing::Values(
    FileSystemSubject{
        "Linux",
        []() -> std::unique_ptr<FileSystem> { return std::make_unique<LinuxFileSystem>(); }},
    FileSystemSubject{"FaultyWithoutAScript", []() -> std::unique_ptr<FileSystem> {
                        return std::make_unique<FaultyFileSystem>(realFileSystem);
                      }});

INSTANTIATE_TEST_SUITE_P(Subjects, FileSystemContract, kSubjects,
                         [](const auto& subject) { return subject.param.name; });

class FaultyFileSystemTest : public ::testing::Test {
 protected:
  [[nodiscard]] Path at(const Path& name) const { return temp_.path() / name; }

  const TempFolder temp_;
  FaultyFileSystem faulty_{realFileSystem};
  std::string buffer_ = std::string(16, '-');
};

TEST_F(FaultyFileSystemTest, AFailingCallAnswersItsErrorWithoutTouchingAnything) {
  writeFile(at("victim"), "old");
  writeFile(at("folder/victim"), "");
  const auto reader = std::move(faulty_.openForReading(at("victim"), ReadMode::streamed).value());
  const auto writer = std::move(faulty_.createFile(at("victim.part")).value());
  const auto before = tree(temp_.path());
  const Date date = faulty_.status(at("victim")).value().modified;

  const auto bytes = std::as_writable_bytes(std::span(buffer_));
  const std::map<Call, std::function<int()>> calls = {
      {Call::status, [&] { return faulty_.status(at("victim")).error(); }},
      {Call::resolve, [&] { return faulty_.resolve(at("victim")).error(); }},
      {Call::list, [&] { return faulty_.list(at("victim")).error(); }},
      {Call::entryStatus,
       [&] { return faulty_.list(at("folder")).value().entries.at(0).status.error(); }},
      {Call::openForReading,
       [&] { return faulty_.openForReading(at("victim"), ReadMode::pastCache).error(); }},
      {Call::read, [&] { return reader->readAt(bytes, 0).error(); }},
      {Call::createFile, [&] { return faulty_.createFile(at("new victim")).error(); }},
      {Call::write, [&] { return writer->write(bytes).error(); }},
      {Call::startWriteback, [&] { return writer->startWriteback(0, 1); }},
      {Call::finishWriteback, [&] { return writer->finishWriteback(0, 1); }},
      {Call::setFileDates, [&] { return writer->setDates(Date(), std::nullopt); }},
      {Call::flush, [&] { return writer->flush(); }},
      {Call::createFolder, [&] { return faulty_.createFolder(at("new victim")); }},
      {Call::move, [&] { return faulty_.moveWithoutReplacing(at("folder"), at("new victim")); }},
      {Call::remove, [&] { return faulty_.removeFile(at("victim")); }},
      {Call::setDates, [&] { return faulty_.setDates(at("victim"), Date(), std::nullopt); }},
      {Call::flushFolder, [&] { return faulty_.flushFolder(at("victim")); }},
      {Call::flushVolume, [&] { return faulty_.flushVolume(at("victim")); }},
      {Call::checkWritable, [&] { return faulty_.checkWritable(at("victim")); }},
  };
  for (const auto& [call, make] : calls) {
    faulty_.setScript(FaultyFileSystem::failing(call, "victim", ENODEV));
    EXPECT_EQ(make(), ENODEV) << "call " << static_cast<int>(call);
  }
  EXPECT_EQ(tree(temp_.path()), before);
  EXPECT_EQ(readFile(at("victim.part")), "");
  EXPECT_EQ(buffer_, std::string(16, '-'));
  faulty_.setScript(FaultyFileSystem::failing(Call::flush, "victim", ENODEV));
  EXPECT_EQ(faulty_.status(at("victim")).value().modified, date);
  EXPECT_EQ(faulty_.createFolder(at("new victim")), 0) << "another call fails as well";
  faulty_.setScript(FaultyFileSystem::failing(Call::createFolder, "victim", ENODEV));
  EXPECT_EQ(faulty_.createFolder(at("bystander")), 0) << "another path fails as well";
}

TEST_F(FaultyFileSystemTest, ALimitCutsTransfersAndListingsShort) {
  std::vector<std::uint64_t> offsets;
  faulty_.setScript([&](const CallInfo& info) {
    const bool transfer = info.call == Call::read || info.call == Call::write;
    if (transfer) offsets.push_back(info.offset);
    return transfer || info.call == Call::list ? Intervention{.limit = 3} : Intervention{};
  });
  const auto writer = std::move(faulty_.createFile(at("a")).value());
  EXPECT_EQ(writer->write(std::as_bytes(std::span("abcdef", 6))).value(), 3U);
  EXPECT_EQ(writer->write(std::as_bytes(std::span("de", 2))).value(), 2U);
  EXPECT_EQ(readFile(at("a")), "abcde");
  const auto reader = std::move(faulty_.openForReading(at("a"), ReadMode::streamed).value());
  EXPECT_EQ(reader->readAt(std::as_writable_bytes(std::span(buffer_)), 1).value(), 3U);
  EXPECT_EQ(buffer_.substr(0, 4), "bcd-");
  EXPECT_EQ(offsets, (std::vector<std::uint64_t>{0, 3, 1}));

  for (const char* name : {"b", "c", "d"}) {
    EXPECT_EQ(faulty_.list(temp_.path()).value().error, 0);
    writeFile(at(name), "");
  }
  EXPECT_EQ(faulty_.list(temp_.path()).value().entries.size(), 3U);
  EXPECT_EQ(faulty_.list(temp_.path()).value().error, EIO);
}

TEST_F(FaultyFileSystemTest, AFlippedBitIsWrongOnlyWhereTheScriptSaysSo) {
  const auto flipped = [](char a, char b) { return std::popcount(static_cast<unsigned>(a ^ b)); };
  writeFile(at("a"), "abcdef");
  faulty_.setScript([](const CallInfo& info) { return Intervention{.flipBit = info.offset == 2}; });
  const auto reader = std::move(faulty_.openForReading(at("a"), ReadMode::pastCache).value());
  const auto bytes = std::as_writable_bytes(std::span(buffer_));
  EXPECT_EQ(reader->readAt(bytes, 2).value(), 4U);
  EXPECT_EQ(flipped(buffer_[0], 'c'), 1);
  EXPECT_EQ(buffer_.substr(1, 4), "def-");
  EXPECT_EQ(reader->readAt(bytes.first(2), 1).value(), 2U);
  EXPECT_EQ(buffer_.substr(0, 2), "bc");
  EXPECT_EQ(readFile(at("a")), "abcdef");

  const auto writer = std::move(faulty_.createFile(at("b")).value());
  const std::string given = "abcdef";
  EXPECT_EQ(writer->write(std::as_bytes(std::span(given)).first(2)).value(), 2U);
  EXPECT_EQ(writer->write(std::as_bytes(std::span(given)).last(4)).value(), 4U);
  const std::string written = readFile(at("b"));
  EXPECT_EQ(flipped(written.at(2), 'c'), 1);
  EXPECT_EQ(written.substr(0, 2) + written.substr(3), "abdef");
  EXPECT_EQ(given, "abcdef");
}

TEST_F(FaultyFileSystemTest, OpenFilesCountsWhatIsOpenNow) {
  {
    const auto writer = faulty_.createFile(at("a"));
    const auto reader = faulty_.openForReading(at("a"), ReadMode::streamed);
    EXPECT_FALSE(faulty_.createFile(at("a")).ok());
    EXPECT_FALSE(faulty_.openForReading(at("missing"), ReadMode::streamed).ok());
    EXPECT_EQ(faulty_.openFiles(), 2);
  }
  EXPECT_EQ(faulty_.openFiles(), 0);
}

TEST_F(FaultyFileSystemTest, TheScriptIsAskedOneCallAtATimeOnTheCallingThread) {
  std::map<std::thread::id, int> asked;  // unguarded: the thread sanitizer tells of two at a time
  std::vector<Path> paths;
  faulty_.setScript([&](const CallInfo& info) {
    ++asked[std::this_thread::get_id()];
    if (info.call == Call::move) paths.push_back(info.path);
    return Intervention{};
  });
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      for (int k = 0; k < 500; ++k) static_cast<void>(faulty_.status(at("missing")));
    });
  }
  std::vector<std::thread::id> callers;
  for (std::thread& thread : threads) {
    callers.push_back(thread.get_id());
    thread.join();
  }
  for (const std::thread::id caller : callers) EXPECT_EQ(asked[caller], 500);
  EXPECT_EQ(faulty_.moveWithoutReplacing(at("old"), at("new")), ENOENT);
  EXPECT_EQ(paths, std::vector<Path>{at("new")});
}

}  // namespace
}  // namespace PlatformKit::Testing
