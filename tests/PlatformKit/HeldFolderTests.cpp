#include "PlatformKit/Linux/LinuxFileSystem.h"
#include "PlatformKit/Linux/OpenBelow.h"
#include "PlatformKit/Testing/TempFolder.h"

#include <cerrno>
#include <filesystem>
#include <string>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

namespace PlatformKit {
namespace {

using Testing::readFile;
using Testing::tree;
using Testing::writeFile;

class HeldFolder : public ::testing::Test {
 protected:
  HeldFolder() {
    writeFile(root_ / "a/file", "inside");
    writeFile(temp_.path() / "outside/file", "outside");
    std::filesystem::create_symlink("file", root_ / "a/link");
    std::filesystem::create_symlink("../outside", root_ / "out");
    std::filesystem::create_symlink("a", root_ / "in");
    std::filesystem::create_symlink(temp_.path() / "outside/file", root_ / "a/far");
  }
  [[nodiscard]] std::unique_ptr<Folder> hold() {
    return std::move(fileSystem_.openFolder(root_, Mounts::refused).value());
  }
  // In a child process with mounts of its own, so that nothing is left mounted; answers its status.
  template <class Action>
  static int withOwnMounts(const Action& action) {
    const pid_t child = fork();
    if (child == 0) {
      const bool ready = unshare(CLONE_NEWNS) == 0 &&
                         mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
      _exit(ready ? action() : 77);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  const Testing::TempFolder temp_;
  const Path root_ = temp_.path() / "root";
  LinuxFileSystem fileSystem_;
};

TEST_F(HeldFolder, IsReachedTheSameByTheKernelAndByComponents) {
  const UniqueFd root(::open(root_.c_str(), O_PATH | O_DIRECTORY));
  constexpr int kNew = O_WRONLY | O_CREAT | O_EXCL;
  const struct {
    const char* path;
    int flags;
    int error;
  } cases[] = {
      {"a/file", O_RDONLY, 0},
      {"a", O_RDONLY | O_DIRECTORY, 0},
      {"", O_RDONLY | O_DIRECTORY, 0},
      {"a/link", O_RDONLY, ELOOP},
      {"a/far", O_RDONLY, ELOOP},
      {"in/file", O_RDONLY, ELOOP},
      {"out/file", O_RDONLY, ELOOP},
      {"../outside/file", O_RDONLY, EXDEV},
      {"a/../../outside", O_RDONLY, EXDEV},
      {"/etc/hostname", O_RDONLY, EXDEV},
      {"none/file", O_RDONLY, ENOENT},
      {"a/file/below", O_RDONLY, ENOTDIR},
      {"a/file", kNew, EEXIST},
      {"a/link", kNew, EEXIST},
      {"out/new", kNew, ELOOP},
  };
  for (const auto& [path, flags, error] : cases) {
    for (const Resolving how : {Resolving::byKernel, Resolving::byComponent}) {
      const auto opened = openBelow(root.get(), path, flags, 0644, Mounts::refused, how);
      EXPECT_EQ(opened.error(), error) << path << (how == Resolving::byKernel ? " kernel" : "");
    }
  }
  EXPECT_THAT(tree(temp_.path() / "outside"), ::testing::ElementsAre("file"));
}

TEST_F(HeldFolder, LeadsNowhereElseByAnyCall) {
  const auto held = hold();
  for (const Path path : {"out/file", "../outside/file", "in/new"}) {
    EXPECT_FALSE(held->openForReading(path, ReadMode::streamed).ok()) << path;
    EXPECT_FALSE(held->createFile(path).ok()) << path;
    EXPECT_FALSE(held->status(path).ok()) << path;
    EXPECT_NE(held->createFolder(path.parent_path() / "new folder"), 0) << path;
    EXPECT_NE(createFolders(*held, path / "deep"), 0) << path;
    EXPECT_NE(held->removeFile(path), 0) << path;
    EXPECT_NE(held->moveWithoutReplacing("a/file", path), 0) << path;
    EXPECT_NE(held->moveReplacing("a/file", path), 0) << path;
    EXPECT_NE(held->setDates(path, {}, std::nullopt), 0) << path;
    EXPECT_NE(held->flushFolder(path.parent_path()), 0) << path;
    EXPECT_FALSE(held->list(path.parent_path()).ok()) << path;
  }
  EXPECT_EQ(readFile(temp_.path() / "outside/file"), "outside");
  EXPECT_EQ(readFile(root_ / "a/file"), "inside");
}

TEST_F(HeldFolder, StaysTheSameFolderWhateverBecomesOfItsPath) {
  const auto held = hold();
  const auto before = held->status({}).value().identity;
  std::filesystem::rename(root_, temp_.path() / "moved");
  writeFile(root_ / "a/file", "somebody else's");
  auto made = held->createFile("a/new");
  ASSERT_TRUE(made.ok());
  EXPECT_EQ(held->moveWithoutReplacing("a/new", "a/named"), 0);
  EXPECT_EQ(held->status({}).value().identity, before);
  EXPECT_THAT(tree(root_), ::testing::ElementsAre("a/", "a/file"));
  EXPECT_TRUE(std::filesystem::exists(temp_.path() / "moved/a/named"));
  // A folder below that is moved out of it is no longer reached anew.
  std::filesystem::rename(temp_.path() / "moved/a", temp_.path() / "outside/a");
  EXPECT_EQ(held->flushFolder("a"), ENOENT);
  EXPECT_EQ(held->createFile("a/another").error(), ENOENT);
}

TEST_F(HeldFolder, RefusesVolumesMountedBelowItUnlessTheyBelongToIt) {
  if (geteuid() != 0) GTEST_SKIP() << "Only the administrator can mount.";
  const int status = withOwnMounts([&] {
    if (mount("none", (root_ / "a").c_str(), "tmpfs", 0, "size=1m") != 0) return 77;
    const auto refusing = hold();
    const UniqueFd root(::open(root_.c_str(), O_PATH | O_DIRECTORY));
    const auto opened =
        openBelow(root.get(), "a", O_PATH, 0, Mounts::refused, Resolving::byComponent);
    const bool refuses = refusing->createFile("a/new").error() == EXDEV &&
                         refusing->flushFolder("a") == EXDEV && opened.error() == EXDEV;
    const auto crossing = fileSystem_.openFolder(root_, Mounts::crossed);
    return refuses && crossing.value()->createFile("a/new").ok() ? 0 : 1;
  });
  if (status == 77) GTEST_SKIP() << "Nothing can be mounted here.";
  EXPECT_EQ(status, 0);
}

}  // namespace
}  // namespace PlatformKit
