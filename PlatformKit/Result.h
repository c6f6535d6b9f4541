#pragma once

#include <system_error>
#include <utility>
#include <variant>

namespace PlatformKit {

/// The number of an operating-system error (errno), never 0.
struct ErrorNumber {
  int value;
  friend bool operator==(ErrorNumber, ErrorNumber) = default;
};

/// A value, or the number of the error that kept it from being had. Calls that give no value answer
/// a plain int instead: 0 when done, else the error number.
template <class T>
class [[nodiscard]] Result {
 public:
  Result(T value) : content_(std::in_place_index<0>, std::move(value)) {}
  Result(ErrorNumber error) : content_(std::in_place_index<1>, error) {}

  [[nodiscard]] bool ok() const { return content_.index() == 0; }

  /// The error number; 0 when there is a value.
  [[nodiscard]] int error() const { return ok() ? 0 : std::get<1>(content_).value; }

  /// The value. Throws std::system_error with the error number when there is none.
  [[nodiscard]] T& value() {
    throwIfFailed();
    return std::get<0>(content_);
  }
  [[nodiscard]] const T& value() const {
    throwIfFailed();
    return std::get<0>(content_);
  }

 private:
  void throwIfFailed() const {
    if (!ok()) throw std::system_error(error(), std::generic_category());
  }

  std::variant<T, ErrorNumber> content_;
};

}  // namespace PlatformKit
