#include "ZephrimarkOffload/Model/MainQueue.h"

#include <QCoreApplication>
#include <QEvent>

namespace ZephrimarkOffload {
namespace {

QEvent::Type workEvent() {
  static const int type = QEvent::registerEventType();
  return static_cast<QEvent::Type>(type);
}

}  // namespace

MainQueue::MainQueue() : sender_(std::make_shared<Sender>()) {
  sender_->queue_ = this;
}

MainQueue::~MainQueue() {
  const std::lock_guard held(sender_->lock_);
  sender_->queue_ = nullptr;
  sender_->waiting_.clear();
}

void MainQueue::Sender::post(std::function<void()> work) {
  const std::lock_guard held(lock_);
  if (queue_ == nullptr) return;
  waiting_.push_back(std::move(work));
  QCoreApplication::postEvent(queue_, new QEvent(workEvent()));
}

bool MainQueue::event(QEvent* event) {
  std::function<void()> work;
  {
    const std::lock_guard held(sender_->lock_);
    if (event->type() != workEvent()) return QObject::event(event);
    if (sender_->waiting_.empty()) return true;
    work = std::move(sender_->waiting_.front());
    sender_->waiting_.pop_front();
  }
  work();
  return true;
}

}  // namespace ZephrimarkOffload
