#include "ZephrimarkOffload/Demo/Screenshot.h"

#include <chrono>
#include <iostream>

#include <QGuiApplication>
#include <QImage>

namespace ZephrimarkOffload::Demo {
namespace {

constexpr std::chrono::milliseconds kEvery{50};
// Longer than the longest animation of the window.
constexpr int kLooksUntilStill = 14;
constexpr int kMostLooks = 400;

}  // namespace

Screenshot::Screenshot(DemoWindow& demo, QString file) : demo_(demo), file_(std::move(file)) {
  again_.callOnTimeout([this] { look(); });
  again_.start(kEvery);
}

void Screenshot::look() {
  ++looks_;
  if (looks_ > kMostLooks) {
    std::cerr << "zephrimark-offload-demo: The scene never came to rest.\n";
    again_.stop();
    QCoreApplication::exit(1);
    return;
  }
  if (!demo_.isReady()) return;
  if (looksWhenReady_ == 0) looksWhenReady_ = looks_;
  if (looks_ - looksWhenReady_ < kLooksUntilStill) return;
  again_.stop();
  QCoreApplication::exit(save() ? 0 : 1);
}

bool Screenshot::save() {
  if (demo_.window().grabWindow().save(file_, "PNG")) return true;
  std::cerr << "zephrimark-offload-demo: The picture could not be saved in " << file_.toStdString()
            << ".\n";
  return false;
}

}  // namespace ZephrimarkOffload::Demo
