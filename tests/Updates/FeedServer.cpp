#include "tests/Updates/FeedServer.h"

#include <chrono>
#include <stdexcept>

#include <QProcess>
#include <QSslCertificate>
#include <QSslKey>
#include <QTimer>

namespace Updates::Testing {

QByteArray output(const QString& program, const QStringList& arguments) {
  QProcess process;
  process.start(program, arguments);
  if (!process.waitForFinished() || process.exitStatus() != QProcess::NormalExit ||
      process.exitCode() != 0) {
    throw std::runtime_error((program + " failed: " + process.errorString() + " ").toStdString() +
                             process.readAllStandardError().toStdString());
  }
  return process.readAllStandardOutput();
}

FeedServer::FeedServer() {
  const QByteArray pem =
      output("openssl", {"req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:P-256",
                         "-nodes", "-subj", "/CN=Test", "-addext", "subjectAltName=IP:127.0.0.1",
                         "-days", "2", "-keyout", "-", "-out", "-"});
  certificate_ = QSslCertificate(pem);
  QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
  configuration.setLocalCertificate(certificate_);
  configuration.setPrivateKey(QSslKey(pem, QSsl::Ec));
  server_.setSslConfiguration(configuration);
  QObject::connect(&server_, &QTcpServer::pendingConnectionAvailable, &server_,
                   [this] { accept(); });
  if (!server_.listen(QHostAddress::LocalHost)) {
    throw std::runtime_error(server_.errorString().toStdString());
  }
}

QString FeedServer::address(const QString& host) const {
  return "https://" + host + ":" + QString::number(server_.serverPort());
}

QSslConfiguration FeedServer::clientTrust() const {
  QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
  configuration.setCaCertificates({certificate_});
  return configuration;
}

void FeedServer::accept() {
  while (QTcpSocket* const socket = server_.nextPendingConnection()) {
    QObject::connect(socket, &QTcpSocket::readyRead, &server_, [this, socket] { read(*socket); });
    QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    read(*socket);
  }
}

void FeedServer::read(QTcpSocket& socket) {
  if (!socket.peek(1 << 16).contains("\r\n\r\n")) return;
  const QByteArray request = socket.readAll();
  requests.push_back(request);
  const auto found = answers.find(request.split(' ').value(1));
  reply(socket, found == answers.end() ? Answer{"Not here.", 404} : found->second);
}

void FeedServer::reply(QTcpSocket& socket, const Answer& answer) const {
  if (answer.manner == Answer::Manner::never) return;
  const bool cutShort = answer.manner == Answer::Manner::cutShort;
  QByteArray header = "HTTP/1.1 " + QByteArray::number(answer.status) + " As told\r\n" +
                      "Set-Cookie: visitor=1; Path=/\r\nContent-Length: " +
                      QByteArray::number(answer.body.size() + (cutShort ? 1 : 0)) + "\r\n";
  if (!answer.location.isEmpty()) header += "Location: " + answer.location + "\r\n";
  socket.write(header + "\r\n");
  if (answer.manner != Answer::Manner::byteByByte) {
    socket.write(answer.body);
    if (cutShort) socket.disconnectFromHost();
    return;
  }
  auto* const timer = new QTimer(&socket);
  QObject::connect(timer, &QTimer::timeout, &socket, [&socket] { socket.write(" "); });
  timer->start(std::chrono::milliseconds(10));
}

}  // namespace Updates::Testing
