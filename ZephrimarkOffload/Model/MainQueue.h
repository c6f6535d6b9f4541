#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <mutex>

#include <QObject>

namespace ZephrimarkOffload {

/// Brings work from other threads to the main thread, one turn of its event loop each, in order.
/// Made and destroyed on the main thread; what was not run by then never is.
class MainQueue final : public QObject {
 public:
  MainQueue();
  ~MainQueue() override;

  /// The end that other threads hold; may outlive the queue, and then drops what it is given.
  class Sender {
   public:
    /// Any thread.
    void post(std::function<void()> work);

   private:
    friend class MainQueue;
    std::mutex lock_;
    std::deque<std::function<void()>> waiting_;
    MainQueue* queue_ = nullptr;
  };

  [[nodiscard]] std::shared_ptr<Sender> sender() const { return sender_; }

 protected:
  bool event(QEvent* event) override;

 private:
  std::shared_ptr<Sender> sender_;
};

}  // namespace ZephrimarkOffload
