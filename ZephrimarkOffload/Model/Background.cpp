#include "ZephrimarkOffload/Model/Background.h"

#include <system_error>
#include <thread>

namespace ZephrimarkOffload {

bool Background::run(std::function<void()> work) {
  try {
    // Nobody can wait for it: it may never come back from a dead volume.
    std::thread(std::move(work)).detach();
  } catch (const std::system_error&) {
    return false;
  }
  return true;
}

}  // namespace ZephrimarkOffload
