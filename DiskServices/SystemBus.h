#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <string>

#include <systemd/sd-bus.h>

namespace DiskServices {

/// Something on the bus did not work; `name` is the name of the D-Bus error.
class BusError : public std::exception {
 public:
  explicit BusError(std::string name) : name_(std::move(name)) {}
  [[nodiscard]] const std::string& name() const { return name_; }
  [[nodiscard]] const char* what() const noexcept override { return name_.c_str(); }

 private:
  std::string name_;
};

struct MessageRelease {
  void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};
/// Owns a message and with it everything that was read from it, descriptors included.
using Message = std::unique_ptr<sd_bus_message, MessageRelease>;

/// Throws BusError when a call of the bus library answered an error (a negative number); else
/// answers what it answered.
int checked(int answer);

/// Reads every element of the array the message stands at. `contents` is the signature of one;
/// `readElement` reads exactly one. Throws BusError when something else stands there.
void forEachElement(sd_bus_message* message, const char* contents,
                    const std::function<void()>& readElement);

/// A connection to the system bus of its own. One thread, the one that made it.
class SystemBus {
 public:
  /// Throws BusError when there is no bus.
  SystemBus();

  /// A call of UDisks2 that waits for its arguments. Throws BusError when memory is short.
  [[nodiscard]] Message newCall(const std::string& object, const char* interface,
                                const char* member);

  /// Blocks until the answer comes, `microseconds` at most: kPatient, or kUntilAnswered where the
  /// system may ask the user. Throws BusError with the name of the answered error, or that of the
  /// library when there is no answer (no such service, too late, cut off).
  [[nodiscard]] Message call(const Message& message, std::uint64_t microseconds);

  static constexpr std::uint64_t kPatient = 0;  ///< the library's own limit, 25 seconds
  static constexpr std::uint64_t kUntilAnswered = UINT64_MAX;

 private:
  struct Close {
    void operator()(sd_bus* bus) const { sd_bus_close_unref(bus); }
  };
  std::unique_ptr<sd_bus, Close> bus_;
};

}  // namespace DiskServices
