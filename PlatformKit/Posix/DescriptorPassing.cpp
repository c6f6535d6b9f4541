#include "PlatformKit/Posix/DescriptorPassing.h"

#include <array>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>

namespace PlatformKit {
namespace {

// Room for a few descriptors more than the one that is wanted.
constexpr std::size_t kControlSize = 64;

// One byte and the control messages around it: a stream carries descriptors only with data.
struct Message {
  Message() {
    header.msg_iov = &data;
    header.msg_iovlen = 1;
    header.msg_control = control.data();
    header.msg_controllen = control.size();
  }
  Message(const Message&) = delete;
  Message& operator=(const Message&) = delete;

  char byte = 0;
  iovec data{&byte, 1};
  alignas(cmsghdr) std::array<unsigned char, kControlSize> control{};
  msghdr header{};
};

// The first descriptor of a control message, if none came before it; the others are closed.
void takeDescriptors(const cmsghdr& control, UniqueFd& first) {
  const std::size_t bytes = control.cmsg_len - CMSG_LEN(0);
  for (std::size_t at = 0; at + sizeof(int) <= bytes; at += sizeof(int)) {
    int number = -1;
    std::memcpy(&number, CMSG_DATA(&control) + at, sizeof number);
    UniqueFd descriptor(number);
    if (!first.valid()) first = std::move(descriptor);
  }
}

}  // namespace

int sendDescriptor(int socket, int descriptor) {
  Message message;
  message.header.msg_controllen = CMSG_SPACE(sizeof descriptor);
  cmsghdr* control = CMSG_FIRSTHDR(&message.header);
  control->cmsg_level = SOL_SOCKET;
  control->cmsg_type = SCM_RIGHTS;
  control->cmsg_len = CMSG_LEN(sizeof descriptor);
  std::memcpy(CMSG_DATA(control), &descriptor, sizeof descriptor);
  for (;;) {
    if (sendmsg(socket, &message.header, MSG_NOSIGNAL) >= 0) return 0;
    if (errno != EINTR) return errno;
  }
}

UniqueFd receiveDescriptor(int socket) {
  Message message;
  ssize_t count = -1;
  do {
    count = recvmsg(socket, &message.header, MSG_CMSG_CLOEXEC);
  } while (count < 0 && errno == EINTR);
  if (count < 0) return {};
  UniqueFd first;
  for (cmsghdr* control = CMSG_FIRSTHDR(&message.header); control != nullptr;
       control = CMSG_NXTHDR(&message.header, control)) {
    if (control->cmsg_level == SOL_SOCKET && control->cmsg_type == SCM_RIGHTS) {
      takeDescriptors(*control, first);
    }
  }
  // Whoever sends a dozen descriptors does not speak of one device.
  if ((message.header.msg_flags & MSG_CTRUNC) != 0) return {};
  return first;
}

bool isReadOnlyDevice(int descriptor, const Path& device) {
  const int flags = fcntl(descriptor, F_GETFL);
  // A descriptor that is only a place (O_PATH) calls itself read-only, but cannot be read.
  if (flags < 0 || (flags & O_ACCMODE) != O_RDONLY || (flags & O_PATH) != 0) return false;
  struct stat opened {};
  struct stat asked {};
  return fstat(descriptor, &opened) == 0 && stat(device.c_str(), &asked) == 0 &&
         S_ISBLK(opened.st_mode) && S_ISBLK(asked.st_mode) && opened.st_rdev == asked.st_rdev;
}

}  // namespace PlatformKit
