#pragma once

#include <map>
#include <vector>

#include <QByteArray>
#include <QSslConfiguration>
#include <QSslServer>
#include <QString>
#include <QTcpSocket>

namespace Updates::Testing {

/// Runs a program to its end and answers its output; throws std::runtime_error when it fails.
QByteArray output(const QString& program, const QStringList& arguments);

/// What the server says to one request.
struct Answer {
  enum class Manner { whole, cutShort, byteByByte, never };

  QByteArray body = {};
  int status = 200;
  QByteArray location = {};
  Manner manner = Manner::whole;
};

/// An https server on 127.0.0.1, with a certificate of its own that only clientTrust() trusts.
/// Lives on the thread of the test and needs its event loop. Asks every client to keep a cookie.
class FeedServer {
 public:
  FeedServer();

  [[nodiscard]] QString address(const QString& host = "127.0.0.1") const;
  [[nodiscard]] QSslConfiguration clientTrust() const;

  std::map<QByteArray, Answer> answers;  ///< by path; every other path is a 404
  std::vector<QByteArray> requests;      ///< with their headers

 private:
  void accept();
  void read(QTcpSocket& socket);
  void reply(QTcpSocket& socket, const Answer& answer) const;

  QSslCertificate certificate_;
  QSslServer server_;
};

}  // namespace Updates::Testing
