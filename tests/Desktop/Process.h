#pragma once

#include <chrono>
#include <csignal>
#include <thread>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QProcess>
#include <sys/prctl.h>

namespace ZephrimarkOffload::Testing {

/// Runs the event loop until `done`; false when that takes far too long.
template <class Condition>
bool until(Condition done) {
  const QDeadlineTimer limit(std::chrono::seconds(20));
  while (!done()) {
    if (limit.hasExpired()) return false;
    QCoreApplication::processEvents();
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

/// A program that ends with this object, and with this process however that ends.
class Process : public QProcess {
 public:
  ~Process() override {
    kill();
    waitForFinished();
  }

  void run(const QString& program, const QStringList& arguments) {
    setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGKILL); });
    start(program, arguments);
  }

  /// The next line of its output, while the event loop runs; empty when it ends instead.
  QByteArray line() {
    until([this] { return canReadLine() || state() == QProcess::NotRunning; });
    return readLine().trimmed();
  }
};

}  // namespace ZephrimarkOffload::Testing
