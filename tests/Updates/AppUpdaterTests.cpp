#include "PlatformKit/Testing/TempFolder.h"
#include "Updates/AppUpdater.h"
#include "tests/Updates/FeedServer.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QHostInfo>
#include <QNetworkProxy>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Updates::Testing {
namespace {

using ::testing::ElementsAre;

using Kind = UpdateResult::Kind;
using Manner = Answer::Manner;

const QString kNotSigned = "The update information isn't signed by Zephrimark, so it was not used.";
const QString kNotUnderstood = "The update information couldn't be understood.";
const QString kInsecureRedirect = "The server redirected to an address that isn't secure.";
const QString kTooLarge = "The update information is larger than it may be, so it was not used.";

QByteArray feed(const QByteArray& version) {
  return "{\"version\": \"" + version +
         "\", \"downloadPage\": \"https://zephrimark.example/offload\", \"notes\": \"Faster.\"}\n";
}

// The values of the headers with this name, which has no case: Qt 6.8 writes it in another one than
// 6.4.
std::vector<std::string> headersOf(const QByteArray& request, const QByteArray& name) {
  std::vector<std::string> values;
  for (const QByteArray& line : request.split('\n')) {
    const qsizetype colon = line.indexOf(':');
    if (colon < 0 || line.left(colon).compare(name, Qt::CaseInsensitive) != 0) continue;
    values.push_back(line.mid(colon + 1).trimmed().toStdString());
  }
  return values;
}

class AppUpdaterTest : public ::testing::Test {
 protected:
  void SetUp() override {
    output("openssl", {"genpkey", "-algorithm", "ed25519", "-out", fileName("key.pem")});
    serve(feed("1.2.0"));
  }

  void TearDown() override {
    updater_.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }

  QString fileName(const char* name) const {
    return QString::fromStdString((folder_.path() / name).native());
  }

  // Signs the document as a release does and learns the public key.
  QByteArray signatureOf(const QByteArray& document) {
    PlatformKit::Testing::writeFile(folder_.path() / "feed", document.toStdString());
    const QByteArray said = output(ZEPHRIMARK_SIGN_FEED, {fileName("key.pem"), fileName("feed")});
    configuration_.publicKey = said.mid(said.indexOf("KEY=") + 4).trimmed();
    return QByteArray::fromStdString(PlatformKit::Testing::readFile(folder_.path() / "feed.sig"));
  }

  void serve(const QByteArray& document) {
    server_.answers["/feed.json"] = {document};
    server_.answers["/feed.json.sig"] = {signatureOf(document)};
  }

  AppUpdater& makeUpdater() {
    updater_ = std::make_unique<AppUpdater>(configuration_, transport_);
    QObject::connect(updater_.get(), &AppUpdater::finished,
                     [this](const UpdateResult& result) { results_.push_back(result); });
    return *updater_;
  }

  // Runs the event loop until `done`; false when that takes far too long.
  static bool until(const std::function<bool()>& done) {
    QEventLoop loop;
    const QDeadlineTimer limit(std::chrono::seconds(20));
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, &loop, [&] {
      if (done() || limit.hasExpired()) loop.quit();
    });
    watch.start(std::chrono::milliseconds(1));
    loop.exec();
    return done();
  }

  UpdateResult check() {
    results_.clear();
    makeUpdater().checkForUpdates();
    if (!until([this] { return !results_.empty(); }))
      return {Kind::failed, {}, "hangs", {}, {}, {}};
    return results_.front();
  }

  const PlatformKit::Testing::TempFolder folder_;
  FeedServer server_;
  UpdateConfiguration configuration_{server_.address() + "/feed.json", {}, "1.0.0"};
  Transport transport_{std::chrono::seconds(15), server_.clientTrust()};
  std::unique_ptr<AppUpdater> updater_;
  std::vector<UpdateResult> results_;
};

TEST_F(AppUpdaterTest, TellsOfANewerVersionAndOnlyOfANewerOne) {
  const UpdateResult newer = check();
  EXPECT_EQ(newer.kind, Kind::available);
  EXPECT_EQ(newer.title, "Zephrimark Offload 1.2.0 is available");
  EXPECT_EQ(newer.message,
            "You have 1.0.0. The download page opens in your browser; nothing is installed by "
            "itself.");
  EXPECT_EQ(newer.downloadPage, QUrl("https://zephrimark.example/offload"));
  EXPECT_EQ(newer.newVersion, "1.2.0");
  EXPECT_EQ(newer.notes, "Faster.");

  for (const QString& current : {QString("1.2.0"), QString("1.10")}) {
    configuration_.currentVersion = current;
    const UpdateResult same = check();
    EXPECT_EQ(same.kind, Kind::upToDate);
    EXPECT_EQ(same.title, "You have the newest version");
    EXPECT_EQ(same.message, "Zephrimark Offload " + current + " is the newest version.");
    EXPECT_TRUE(same.downloadPage.isEmpty());
  }
}

TEST_F(AppUpdaterTest, ChecksOnceAtATimeAndTellsServersNothing) {
  AppUpdater& updater = makeUpdater();
  std::vector<bool> changes;
  QObject::connect(&updater, &AppUpdater::canCheckForUpdatesChanged,
                   [&] { changes.push_back(updater.canCheckForUpdates()); });
  EXPECT_TRUE(updater.canCheckForUpdates());
  EXPECT_TRUE(server_.requests.empty());
  updater.checkForUpdates();
  updater.checkForUpdates();
  ASSERT_TRUE(until([this] { return !results_.empty(); }));
  EXPECT_EQ(server_.requests.size(), 2U);
  updater.checkForUpdates();
  ASSERT_TRUE(until([this] { return results_.size() == 2; }));
  EXPECT_EQ(changes, (std::vector<bool>{false, true, false, true}));
  EXPECT_EQ(server_.requests.size(), 4U);
  for (const QByteArray& request : server_.requests) {
    EXPECT_THAT(headersOf(request, "User-Agent"), ElementsAre("Zephrimark Offload/1.0.0"));
    EXPECT_THAT(headersOf(request, "Accept-Encoding"), ElementsAre("identity"));
    EXPECT_FALSE(request.toLower().contains("cookie")) << request.data();
  }
}

TEST_F(AppUpdaterTest, BelievesOnlyWhatTheKeySigned) {
  const QByteArray good = server_.answers["/feed.json.sig"].body;
  const QByteArray signedByOther = QByteArray(64, 'x').toBase64();
  QByteArray changed = feed("1.2.0");
  changed.replace("1.2.0", "1.3.0");
  struct Case {
    const char* what;
    QByteArray document;
    Answer signature;
    QString message;
  };
  const Case cases[] = {
      {"other signature", feed("1.2.0"), {signedByOther}, kNotSigned},
      {"changed feed", changed, {good}, kNotSigned},
      {"line end added", feed("1.2.0") + "\n", {good}, kNotSigned},
      {"unsigned garbage is not even read", "{", {good}, kNotSigned},
      {"empty", feed("1.2.0"), {""}, kNotSigned},
      {"cut", feed("1.2.0"), {good.left(80)}, kNotSigned},
      {"no base64", feed("1.2.0"), {"*" + good}, kNotSigned},
      {"too large", feed("1.2.0"), {good + QByteArray(1025 - good.size(), '\n')}, kNotSigned},
      {"missing", feed("1.2.0"), {"", 404}, kNotSigned},
      {"broken server",
       feed("1.2.0"),
       {good, 500},
       "The update server answered with the error 500."},
  };
  for (const Case& given : cases) {
    server_.answers["/feed.json"] = {given.document};
    server_.answers["/feed.json.sig"] = given.signature;
    const UpdateResult result = check();
    EXPECT_EQ(result.kind, Kind::failed) << given.what;
    EXPECT_EQ(result.title, "The update check didn't work") << given.what;
    EXPECT_EQ(result.message, given.message) << given.what;
    EXPECT_TRUE(result.downloadPage.isEmpty()) << given.what;
  }
  server_.answers["/feed.json"] = {feed("1.2.0")};
  server_.answers["/feed.json.sig"] = {good + QByteArray(1024 - good.size(), '\n')};
  EXPECT_EQ(check().kind, Kind::available);
  output("openssl", {"genpkey", "-algorithm", "ed25519", "-out", fileName("key.pem")});
  signatureOf("another key's document");
  EXPECT_EQ(check().message, kNotSigned) << "the key of another";
}

TEST_F(AppUpdaterTest, RefusesSignedFeedsThatMakeNoSense) {
  const QByteArray page = "\"downloadPage\":\"https://zephrimark.example\"";
  const QByteArray cases[] = {
      " ",
      "\xff\xfe",
      "[]",
      "{" + page + "}",
      "{\"version\":2," + page + "}",
      "{\"version\":\"2 beta\"," + page + "}",
      "{\"version\":\"2\"}",
      R"({"version":"2","downloadPage":"https://"})",
      R"({"version":"2","downloadPage":"offload.html"})",
      "{\"version\":\"2\",\"notes\":[]," + page + "}",
      "{\"version\":\"2\"," + page + "}x",
  };
  for (const QByteArray& document : cases) {
    serve(document);
    const UpdateResult result = check();
    EXPECT_EQ(result.kind, Kind::failed) << document.data();
    EXPECT_EQ(result.message, kNotUnderstood) << document.data();
  }
  serve(R"({"version":"2","downloadPage":"http://zephrimark.example"})");
  EXPECT_EQ(check().message,
            "The update information names a download page that isn't secure, so it was not used.");
  serve("{\"version\":\"2\"," + page + "}");
  EXPECT_EQ(check().newVersion, "2");
}

TEST_F(AppUpdaterTest, FollowsAFewRedirectsToSecureAddressesOnly) {
  const QByteArray plain = server_.address().replace("https:", "http:").toUtf8();
  const Answer document = server_.answers["/feed.json"];
  server_.answers["/real.json"] = document;
  struct Case {
    QByteArray location;
    QString message;
  };
  const Case cases[] = {{plain + "/real.json", kInsecureRedirect},
                        {"file:///etc/hostname", kInsecureRedirect},
                        {"data:text/plain,x", kInsecureRedirect},
                        {"/feed.json", "The server redirected too many times."},
                        {"/5", "The server redirected too many times."}};
  for (int hop = 5; hop > 0; --hop) {
    const QByteArray next = hop == 1 ? "/real.json" : "/" + QByteArray::number(hop - 1);
    server_.answers["/" + QByteArray::number(hop)] = {"Moved.", 302, next};
  }
  for (const Case& given : cases) {
    server_.answers["/feed.json"] = {"Moved.", 301, given.location};
    EXPECT_EQ(check().message, given.message) << given.location.data();
  }
  for (const QByteArray& location : {server_.address().toUtf8() + "/real.json", QByteArray("/4")}) {
    server_.answers["/feed.json"] = {"Moved.", 307, location};
    EXPECT_EQ(check().kind, Kind::available) << location.data();
  }
  server_.answers["/feed.json"] = document;
  server_.answers["/feed.json.sig"] = {"Moved.", 302, plain + "/feed.json.sig"};
  EXPECT_EQ(check().message, kInsecureRedirect);
}

TEST_F(AppUpdaterTest, LimitsSizeAndTime) {
  QByteArray large = feed("1.2.0");
  large += QByteArray(65536 - large.size(), ' ');
  serve(large);
  EXPECT_EQ(check().kind, Kind::available);
  serve(large + " ");
  EXPECT_EQ(check().message, kTooLarge);
  server_.answers["/feed.json"] = {QByteArray(8 << 20, ' ')};
  EXPECT_EQ(check().message, kTooLarge);

  transport_.patience = std::chrono::milliseconds(300);
  for (const Manner manner : {Manner::never, Manner::byteByByte}) {
    server_.answers["/feed.json"] = {large, 200, {}, manner};
    EXPECT_EQ(check().message, "The answer took too long.");
  }
  EXPECT_TRUE(updater_->canCheckForUpdates());
}

TEST_F(AppUpdaterTest, TellsWhyAServerCannotBeUsed) {
  server_.answers["/feed.json"].manner = Manner::cutShort;
  EXPECT_TRUE(check().message.startsWith("The update server couldn't be reached: "));
  server_.answers["/feed.json"] = {feed("1.2.0"), 206};
  EXPECT_EQ(check().message, "The update server answered with the error 206.");
  server_.answers.clear();
  EXPECT_EQ(check().message, "The update server answered with the error 404.");

  const QString untrusted = "The update server couldn't prove who it is: ";
  const std::size_t before = server_.requests.size();
  // A machine without a name for itself has no other address for the server.
  if (!QHostInfo::fromName("localhost").addresses().isEmpty()) {
    configuration_.feedUrl = server_.address("localhost") + "/feed.json";
    EXPECT_TRUE(check().message.startsWith(untrusted)) << "certificate of another server";
  }
  configuration_.feedUrl = server_.address() + "/feed.json";
  transport_.tls.reset();
  EXPECT_TRUE(check().message.startsWith(untrusted)) << "certificate of nobody";
  EXPECT_EQ(server_.requests.size(), before);

  configuration_.feedUrl = "https://127.0.0.1:1/feed.json";
  EXPECT_EQ(check().message, "The update server couldn't be reached: Connection refused.");

  QNetworkProxy::setApplicationProxy(QNetworkProxy(QNetworkProxy::HttpProxy, "127.0.0.1", 1));
  configuration_.feedUrl = "https://zephrimark.invalid/feed.json";
  EXPECT_EQ(check().message, "The update server couldn't be reached: Proxy connection refused.");
  QNetworkProxy::setApplicationProxy(QNetworkProxy::NoProxy);
}

TEST_F(AppUpdaterTest, MayGoAtAnyTime) {
  server_.answers["/feed.json"].manner = Manner::never;
  makeUpdater().checkForUpdates();
  ASSERT_TRUE(until([this] { return !server_.requests.empty(); }));
  updater_.reset();
  makeUpdater().checkForUpdates();
  updater_.reset();

  server_.answers["/feed.json"].manner = Manner::whole;
  QObject::connect(&makeUpdater(), &AppUpdater::finished, [this] { updater_.reset(); });
  updater_->checkForUpdates();
  ASSERT_TRUE(until([this] { return !updater_; }));
  EXPECT_EQ(results_.size(), 1U);

  QObject::connect(&makeUpdater(), &AppUpdater::canCheckForUpdatesChanged, [this] {
    if (updater_->canCheckForUpdates()) updater_.reset();
  });
  updater_->checkForUpdates();
  ASSERT_TRUE(until([this] { return !updater_; }));
  EXPECT_EQ(results_.size(), 1U) << "no result of a check whose updater is gone";
}

TEST_F(AppUpdaterTest, IsNotThereWithoutAGoodConfiguration) {
  const UpdateConfiguration good = configuration_;
  const QString address = good.feedUrl;
  std::vector<UpdateConfiguration> cases;
  for (const QString& url :
       {QString(), QString("feed.json"), QString(address).replace("https:", "http:"),
        QString("https:feed.json"), QString("https://"), QString("https:///feed.json"),
        QString("ftp://host/feed.json"), QString("https://a b/feed.json"), " " + address}) {
    cases.push_back({url, good.publicKey, good.currentVersion});
  }
  for (const QByteArray& key :
       {QByteArray(), QByteArray("key"), QByteArray(31, 'x').toBase64(),
        QByteArray(33, 'x').toBase64(), good.publicKey + "!", QByteArray(32, 'x')}) {
    cases.push_back({address, key, good.currentVersion});
  }
  cases.push_back({address, good.publicKey, "unknown"});
  for (const UpdateConfiguration& bad : cases) {
    configuration_ = bad;
    AppUpdater& updater = makeUpdater();
    EXPECT_FALSE(updater.isEnabled()) << qPrintable(bad.feedUrl) << ' ' << bad.publicKey.data();
    updater.checkForUpdates();
    EXPECT_FALSE(updater.canCheckForUpdates());
  }
  QCoreApplication::processEvents();
  EXPECT_TRUE(results_.empty());
  EXPECT_TRUE(server_.requests.empty());

  configuration_ = good;
  configuration_.feedUrl = server_.address();
  server_.answers["/"] = server_.answers["/feed.json"];
  server_.answers["/.sig"] = server_.answers["/feed.json.sig"];
  EXPECT_EQ(check().kind, Kind::available) << "a feed at the root";
}

}  // namespace
}  // namespace Updates::Testing
