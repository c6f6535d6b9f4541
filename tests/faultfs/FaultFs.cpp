// FaultFs BACKING MOUNTPOINT [RULE]...: shows the folder BACKING at MOUNTPOINT, with the faults
// that the rules ask for (Rules.h). Says "ready" once it does so; ends when it is unmounted, or
// with the program that started it. Lines written to MOUNTPOINT/.faults in one go replace the
// rules; read, that file tells how many calls each rule has concerned. No list of files names it.
// Rules that are given at the start hold no calls.
#define FUSE_USE_VERSION 31

#include "PlatformKit/Posix/UniqueFd.h"
#include "tests/faultfs/Rules.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>

#include <dirent.h>
#include <fcntl.h>
#include <fuse.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace {

using PlatformKit::UniqueFd;

constexpr std::string_view kControl = "/.faults";

struct Served {
  UniqueFd backing;
  FaultFs::Rules rules;
};

Served& served() {
  return *static_cast<Served*>(fuse_get_context()->private_data);
}

int backing() {
  return served().backing.get();
}

// As the calls that end in "at" want it: relative.
const char* below(const char* path) {
  return path[1] == '\0' ? "." : path + 1;
}

int done(int result) {
  return result < 0 ? -errno : result;
}

int faultOf(std::string_view call, const char* path) {
  return -served().rules.onCall(call, path).error;
}

int descriptor(const fuse_file_info* file) {
  return static_cast<int>(file->fh);
}

void* onMounted(fuse_conn_info* /*connection*/, fuse_config* settings) {
  settings->use_ino = 1;
  settings->hard_remove = 1;
  std::puts("ready");
  std::fflush(stdout);
  return fuse_get_context()->private_data;
}

int attributes(const char* path, struct stat* status, fuse_file_info* file) {
  if (path == kControl) {
    status->st_mode = S_IFREG | 0600;
    status->st_nlink = 1;
    return 0;
  }
  if (file != nullptr) return done(fstat(descriptor(file), status));
  return done(fstatat(backing(), below(path), status, AT_SYMLINK_NOFOLLOW));
}

int listFolder(const char* path, void* list, fuse_fill_dir_t add, off_t /*offset*/,
               fuse_file_info* /*file*/, fuse_readdir_flags /*flags*/) {
  DIR* folder = fdopendir(openat(backing(), below(path), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (folder == nullptr) return -errno;
  // NOLINTNEXTLINE(concurrency-mt-unsafe): own stream
  while (const dirent* entry = readdir(folder)) {
    struct stat status {};
    status.st_ino = entry->d_ino;
    status.st_mode = static_cast<mode_t>(DTTOIF(entry->d_type));
    if (add(list, entry->d_name, &status, 0, fuse_fill_dir_flags{}) != 0) break;
  }
  closedir(folder);
  return 0;
}

int makeFolder(const char* path, mode_t mode) {
  return done(mkdirat(backing(), below(path), mode));
}

int removeItem(const char* path) {
  if (const int error = faultOf("unlink", path)) return error;
  return done(unlinkat(backing(), below(path), 0));
}

int removeFolder(const char* path) {
  return done(unlinkat(backing(), below(path), AT_REMOVEDIR));
}

int moveItem(const char* from, const char* to, unsigned flags) {
  if (const int error = faultOf(flags == 0 ? "rename" : "noReplace", from)) return error;
  return done(renameat2(backing(), below(from), backing(), below(to), flags));
}

int setMode(const char* path, mode_t mode, fuse_file_info* /*file*/) {
  return done(fchmodat(backing(), below(path), mode, 0));
}

int setSize(const char* path, off_t size, fuse_file_info* file) {
  if (path == kControl) return 0;
  if (file != nullptr) return done(ftruncate(descriptor(file), size));
  const UniqueFd fd(openat(backing(), below(path), O_WRONLY | O_CLOEXEC));
  return fd.valid() ? done(ftruncate(fd.get(), size)) : -errno;
}

int setDates(const char* path, const timespec dates[2], fuse_file_info* /*file*/) {
  return done(utimensat(backing(), below(path), dates, AT_SYMLINK_NOFOLLOW));
}

int space(const char* /*path*/, struct statvfs* facts) {
  return done(fstatvfs(backing(), facts));
}

int keep(int fd, fuse_file_info* file) {
  if (fd < 0) return -errno;
  // Whoever wants what is below must get past the kernel's cache, as with a file system of the
  // kernel.
  file->keep_cache = 1;
  file->fh = static_cast<std::uint64_t>(fd);
  return 0;
}

int openFile(const char* path, fuse_file_info* file) {
  if (path == kControl) {
    file->direct_io = 1;
    return keep(fcntl(backing(), F_DUPFD_CLOEXEC, 0), file);
  }
  if (const int error = faultOf((file->flags & O_DIRECT) != 0 ? "openDirect" : "open", path)) {
    return error;
  }
  // Reads of any place and length come from the cache below.
  const int flags = (file->flags & ~O_DIRECT) | O_CLOEXEC;
  return keep(openat(backing(), below(path), flags), file);
}

int createFile(const char* path, mode_t mode, fuse_file_info* file) {
  if (const int error = faultOf("create", path)) return error;
  const int flags = (file->flags & ~O_DIRECT) | O_CREAT | O_CLOEXEC;
  return keep(openat(backing(), below(path), flags, mode), file);
}

int readCounts(char* buffer, std::size_t size, off_t offset) {
  const std::string counts = served().rules.counts();
  const std::size_t start = std::min(counts.size(), static_cast<std::size_t>(offset));
  return static_cast<int>(counts.copy(buffer, size, start));
}

int readFile(const char* path, char* buffer, std::size_t size, off_t offset, fuse_file_info* file) {
  if (path == kControl) return readCounts(buffer, size, offset);
  const auto* call = (file->flags & O_DIRECT) != 0 ? "readDirect" : "read";
  const FaultFs::Effect effect = served().rules.onCall(call, path, offset, size);
  if (effect.error != 0) return -effect.error;
  const ssize_t count = pread(descriptor(file), buffer, size, offset);
  if (count < 0) return -errno;
  if (effect.flip && count > 0) buffer[count / 2] ^= 1;
  return static_cast<int>(count);
}

int writeFile(const char* path, const char* buffer, std::size_t size, off_t offset,
              fuse_file_info* file) {
  if (path == kControl) {
    return served().rules.replace(std::string(buffer, size)) ? static_cast<int>(size) : -EINVAL;
  }
  const FaultFs::Effect effect = served().rules.onCall("write", path, offset, size);
  if (effect.error != 0) return -effect.error;
  return done(
      static_cast<int>(pwrite(descriptor(file), buffer, std::min(size, effect.most), offset)));
}

int flushFile(const char* path, int /*dataOnly*/, fuse_file_info* file) {
  if (const int error = faultOf("flush", path)) return error;
  return done(fsync(descriptor(file)));
}

int flushFolder(const char* path, int /*dataOnly*/, fuse_file_info* /*file*/) {
  if (const int error = faultOf("flush", path)) return error;
  const UniqueFd fd(openat(backing(), below(path), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  return fd.valid() ? done(fsync(fd.get())) : -errno;
}

int closeFile(const char* /*path*/, fuse_file_info* file) {
  close(descriptor(file));
  return 0;
}

fuse_operations operations() {
  fuse_operations calls{};
  calls.init = onMounted;
  calls.getattr = attributes;
  calls.readdir = listFolder;
  calls.mkdir = makeFolder;
  calls.unlink = removeItem;
  calls.rmdir = removeFolder;
  calls.rename = moveItem;
  calls.chmod = setMode;
  calls.truncate = setSize;
  calls.utimens = setDates;
  calls.statfs = space;
  calls.open = openFile;
  calls.create = createFile;
  calls.read = readFile;
  calls.write = writeFile;
  calls.fsync = flushFile;
  calls.fsyncdir = flushFolder;
  calls.release = closeFile;
  return calls;
}

}  // namespace

int main(int argc, char** argv) {
  prctl(PR_SET_PDEATHSIG, SIGTERM);
  if (argc < 3) return 2;
  umask(0);
  Served content;
  content.backing = UniqueFd(open(argv[1], O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!content.backing.valid()) return 1;
  std::string rules;
  for (int i = 3; i < argc; ++i) rules += std::string(argv[i]) + "\n";
  if (!content.rules.replace(rules)) return 2;
  // One thread answers sooner, but a call that is held would keep it from hearing of new rules.
  const bool rulesStay = argc > 3;
  std::array<std::string, 6> command = {
      argv[0], "-f", rulesStay ? "-s" : "-f", "-o", "default_permissions,allow_other", argv[2]};
  std::array<char*, 6> pointers{};
  std::transform(command.begin(), command.end(), pointers.begin(),
                 [](std::string& text) { return text.data(); });
  const fuse_operations calls = operations();
  return fuse_main(static_cast<int>(pointers.size()), pointers.data(), &calls, &content);
}
