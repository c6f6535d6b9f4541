#include "PlatformKit/Linux/LinuxVolumeWatcher.h"

#include "PlatformKit/Linux/DeviceEvents.h"
#include "PlatformKit/Posix/SignalMask.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <linux/netlink.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

namespace PlatformKit {
namespace {

using namespace std::chrono_literals;
using Steady = std::chrono::steady_clock;

// A card with four partitions tells of itself more than ten times.
constexpr auto kMoment = 50ms;

// Not valid when this computer does not let us listen.
UniqueFd deviceEvents() {
  UniqueFd socket(
      ::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_KOBJECT_UEVENT));
  if (!socket.valid()) return {};
  const int on = 1;
  // Without the senders' names nothing that comes can be believed.
  if (setsockopt(socket.get(), SOL_SOCKET, SO_PASSCRED, &on, sizeof on) != 0) return {};
  constexpr unsigned kKernel = 1;
  constexpr unsigned kUdev = 2;
  sockaddr_nl address{};
  address.nl_family = AF_NETLINK;
  address.nl_groups = kKernel | kUdev;
  if (bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    return {};
  }
  return socket;
}

// Others than the system could tell lies, and have every drive asked again and again.
bool isFromTheSystem(msghdr& message) {
  for (cmsghdr* part = CMSG_FIRSTHDR(&message); part != nullptr;
       part = CMSG_NXTHDR(&message, part)) {
    if (part->cmsg_level != SOL_SOCKET || part->cmsg_type != SCM_CREDENTIALS) continue;
    ucred sender{};
    std::memcpy(&sender, CMSG_DATA(part), sizeof sender);
    return sender.uid == 0;
  }
  return false;
}

}  // namespace

LinuxVolumeWatcher::~LinuxVolumeWatcher() {
  if (!thread_.joinable()) return;
  // This cannot fail: the counter is far from full.
  static_cast<void>(eventfd_write(stop_.get(), 1));
  thread_.join();
}

void LinuxVolumeWatcher::start(std::function<void()> changed) {
  stop_ = UniqueFd(eventfd(0, EFD_CLOEXEC));
  if (!stop_.valid()) throw std::system_error(errno, std::generic_category(), "eventfd");
  mounts_ = UniqueFd(open(mountInfo_.c_str(), O_RDONLY | O_CLOEXEC));
  devices_ = deviceEvents();
  const AllSignalsBlocked inheritedByTheThread;
  thread_ = std::thread([this, changed = std::move(changed)] { watch(changed); });
}

void LinuxVolumeWatcher::watch(const std::function<void()>& changed) {
  for (;;) {
    if (wait(-1) == Wake::stop) return;
    // More of the same event is under way.
    const auto end = Steady::now() + kMoment;
    for (auto left = kMoment; left > 0ms;
         left = std::chrono::ceil<std::chrono::milliseconds>(end - Steady::now())) {
      if (wait(static_cast<int>(left.count())) == Wake::stop) return;
    }
    changed();
  }
}

LinuxVolumeWatcher::Wake LinuxVolumeWatcher::wait(int milliseconds) {
  // The list of mounts needs no reading: each poll starts from where the last one ended.
  std::array<pollfd, 3> waiting = {
      {{stop_.get(), POLLIN, 0}, {mounts_.get(), POLLPRI, 0}, {devices_.get(), POLLIN, 0}}};
  for (;;) {
    const int count = poll(waiting.data(), waiting.size(), milliseconds);
    if (count == 0) return Wake::time;
    if (count < 0) continue;  // out of memory for a moment; signals are for other threads
    if (waiting[0].revents != 0) return Wake::stop;
    const bool isNews = waiting[2].revents != 0 && readDeviceEvents();
    if (waiting[1].revents != 0 || isNews) return Wake::event;
    if (milliseconds >= 0) return Wake::time;  // the caller knows how much time is left
    waiting[2].fd = devices_.get();
  }
}

// Reads all that came and answers whether anything of it matters.
bool LinuxVolumeWatcher::readDeviceEvents() {
  bool matters = false;
  for (;;) {
    std::array<char, 16384> bytes{};
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(ucred))> control{};
    iovec piece{bytes.data(), bytes.size()};
    msghdr message{};
    message.msg_iov = &piece;
    message.msg_iovlen = 1;
    message.msg_control = control.data();
    message.msg_controllen = control.size();
    const ssize_t count = recvmsg(devices_.get(), &message, MSG_DONTWAIT | MSG_CMSG_CLOEXEC);
    if (count >= 0) {
      const std::string_view text(bytes.data(), static_cast<std::size_t>(count));
      matters = (isFromTheSystem(message) && isBlockDeviceEvent(text)) || matters;
    } else if (errno == ENOBUFS) {
      matters = true;  // more came than there was room for: some of it may have mattered
    } else if (errno != EINTR) {
      // A socket that is broken would wake us for ever.
      if (errno != EAGAIN) devices_ = UniqueFd();
      return matters;
    }
  }
}

}  // namespace PlatformKit
