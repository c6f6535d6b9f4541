#pragma once

#include <algorithm>
#include <chrono>
#include <functional>
#include <vector>

/// How long the action takes, in seconds.
inline double secondsOf(const std::function<void()>& action) {
  const auto start = std::chrono::steady_clock::now();
  action();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// The value in the middle; `values` is not empty.
inline double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}
