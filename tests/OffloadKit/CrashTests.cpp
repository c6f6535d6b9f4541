#include "tests/OffloadKit/OffloadFixture.h"

#include <csignal>

#include <sys/wait.h>
#include <unistd.h>

namespace OffloadKit {
namespace {

class Crash : public OffloadFixture {
 protected:
  // Runs the plan in a process of its own that is killed right before its call number `step` on the
  // file system. Answers whether it was killed, rather than having come to its end.
  bool killedAt(int step) {
    const pid_t child = fork();
    if (child == 0) {
      int calls = 0;
      fileSystem_.setScript([&calls, step](const CallInfo&) {
        if (++calls == step) kill(getpid(), SIGKILL);
        return Intervention{};
      });
      run(plan());
      _exit(0);
    }
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return WIFSIGNALED(status);
  }

  // Every copy that has its name equals the original, and every record that has its name is whole.
  void expectOnlyWholeFiles(int number) {
    for (const std::string& item : tree(drive(number))) {
      if (item.ends_with('/') || item.ends_with(".zmpart")) continue;
      const Path file = drive(number) / item;
      const std::string content = readFile(file);
      if (file.extension() == ".mhl") {
        EXPECT_TRUE(content.ends_with("</hashlist>\n")) << item;
      } else if (file.extension() == ".xml") {
        EXPECT_TRUE(content.ends_with("</ascmhldirectory>\n")) << item;
      } else if (file.extension() == ".html") {
        EXPECT_TRUE(content.ends_with("</html>")) << item;
      } else {
        const Path original = card_ / file.lexically_relative(copies(number));
        EXPECT_EQ(content, readFile(original)) << item;
        EXPECT_EQ(std::filesystem::last_write_time(file),
                  std::filesystem::last_write_time(original));
      }
    }
  }
};

TEST_F(Crash, atAnyStepLeavesOnlyVerifiedNamesAndTheNextRunFinishes) {
  addFile("DCIM/a", pattern(3 * kChunk + 1));
  addFile("b", pattern(100));
  addFile("empty", "");
  int step = 1;
  for (;; ++step) {
    SCOPED_TRACE(step);
    for (int number = 1; number <= 2; ++number) std::filesystem::remove_all(drive(number));
    for (int number = 1; number <= 2; ++number) std::filesystem::create_directories(drive(number));
    if (!killedAt(step)) break;
    for (int number = 1; number <= 2; ++number) expectOnlyWholeFiles(number);
    EXPECT_TRUE(run(plan()).allVerified());
    expectIdentical(1);
    expectIdentical(2);
    if (HasFailure()) return;
  }
  EXPECT_GT(step, 80);
}

}  // namespace
}  // namespace OffloadKit
