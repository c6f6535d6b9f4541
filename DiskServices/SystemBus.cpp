#include "DiskServices/SystemBus.h"

namespace DiskServices {
namespace {

constexpr const char* kService = "org.freedesktop.UDisks2";

/// An error that the library fills in.
struct ReplyError {
  ReplyError() = default;
  ~ReplyError() { sd_bus_error_free(&value); }
  ReplyError(const ReplyError&) = delete;
  ReplyError& operator=(const ReplyError&) = delete;

  sd_bus_error value{};
};

}  // namespace

int checked(int answer) {
  if (answer >= 0) return answer;
  ReplyError error;
  sd_bus_error_set_errno(&error.value, answer);
  throw BusError(error.value.name);
}

void forEachElement(sd_bus_message* message, const char* contents,
                    const std::function<void()>& readElement) {
  checked(sd_bus_message_enter_container(message, 'a', contents));
  while (checked(sd_bus_message_at_end(message, 0)) == 0) readElement();
  checked(sd_bus_message_exit_container(message));
}

SystemBus::SystemBus() {
  sd_bus* bus = nullptr;
  checked(sd_bus_open_system(&bus));
  bus_.reset(bus);
}

Message SystemBus::newCall(const std::string& object, const char* interface, const char* member) {
  sd_bus_message* message = nullptr;
  checked(sd_bus_message_new_method_call(bus_.get(), &message, kService, object.c_str(), interface,
                                         member));
  return Message(message);
}

Message SystemBus::call(const Message& message, std::uint64_t microseconds) {
  ReplyError error;
  sd_bus_message* reply = nullptr;
  const int answer = sd_bus_call(bus_.get(), message.get(), microseconds, &error.value, &reply);
  if (answer < 0 && error.value.name != nullptr) throw BusError(error.value.name);
  checked(answer);
  return Message(reply);
}

}  // namespace DiskServices
