#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <mutex>

#include <QObject>

namespace ZephrimarkOffload {

/// Brings work from other threads to the main thread, one turn of its event loop each, in the order
/// in which it was given. Made and destroyed on the main thread, with an event loop; what was not
/// run by then never is. Work may destroy anything but the queue.
class MainQueue final : public QObject {
 public:
  MainQueue();
  ~MainQueue() override;

  /// The end that other threads hold; may outlive the queue, and then drops what it is given.
  class Sender {
   public:
    /// Any thread; never waits for the work. Throws std::bad_alloc only.
    void post(std::function<void()> work);

   private:
    friend class MainQueue;
    std::mutex lock_;
    std::deque<std::function<void()>> waiting_;
    MainQueue* queue_ = nullptr;
  };

  /// Any thread. One for all who ask.
  [[nodiscard]] std::shared_ptr<Sender> sender() const { return sender_; }

 protected:
  bool event(QEvent* event) override;

 private:
  std::shared_ptr<Sender> sender_;
};

}  // namespace ZephrimarkOffload
