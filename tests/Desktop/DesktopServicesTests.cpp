#include "PlatformKit/Posix/UniqueFd.h"
#include "ZephrimarkOffload/Desktop/DesktopServices.h"
#include "ZephrimarkOffload/Desktop/FileManager.h"
#include "tests/Desktop/MockBus.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <tuple>

#include <QDBusArgument>
#include <QDBusUnixFileDescriptor>
#include <QStandardPaths>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

namespace ZephrimarkOffload::Testing {
namespace {

using PlatformKit::UniqueFd;

const QString kInhibit = QStringLiteral("Inhibit");
const QString kUninhibit = QStringLiteral("Uninhibit");
const QString kNotify = QStringLiteral("Notify");
const QString kUpdate = QStringLiteral("Update");

/// DesktopServices on a bus that is both the session's and the system's.
class DesktopOnABus : public ::testing::Test {
 protected:
  void SetUp() override {
    if (QStandardPaths::findExecutable(QStringLiteral("dbus-daemon")).isEmpty()) {
      GTEST_SKIP() << "Needs the package dbus.";
    }
    bus_.emplace();
    services_.emplace(bus_->services());
    desktop_.emplace(bus_->application(), bus_->application());
  }

  void TearDown() override {
    if (bus_) desktop_.reset();
  }

  // A descriptor as logind hands out; its other end is kept.
  QDBusMessage grant(const QDBusMessage& call) {
    std::array<int, 2> ends{};
    EXPECT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
    held_.emplace_back(ends[0]);
    QDBusUnixFileDescriptor descriptor;
    descriptor.giveFileDescriptor(ends[1]);
    return call.createReply(QVariant::fromValue(descriptor));
  }

  // How many of the descriptors that were handed out are still open.
  std::ptrdiff_t open() const {
    return std::count_if(held_.begin(), held_.end(), [](const UniqueFd& end) {
      pollfd state{end.get(), POLLIN, 0};
      return poll(&state, 1, 0) == 0;
    });
  }

  // All that the application sent so far has arrived.
  void waitForArrival() {
    const QDBusMessage ping = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetId"));
    bus_->application().call(ping);
    bus_->services().call(ping);
    QCoreApplication::processEvents();
  }

  std::optional<MockBus> bus_;
  std::optional<MockServices> services_;
  std::optional<DesktopServices> desktop_;
  std::vector<UniqueFd> held_;
};

TEST_F(DesktopOnABus, NotifiesInPlainText) {
  services_->answers[kNotify] = [](const QDBusMessage& call) { return call.createReply(7U); };
  struct Case {
    QVariant capabilities;
    QString title, body, sent;
  };
  const Case cases[] = {
      {QStringList{"body", "body-markup"}, "<A>", "1 < 2 && \"x\" > y",
       "1 &lt; 2 &amp;&amp; \"x\" &gt; y"},
      {QStringList{"body"}, "B", "<b>&amp;</b>", "<b>&amp;</b>"},
      {42, "C", "nonsense <instead> of capabilities", "nonsense <instead> of capabilities"},
      {QVariant(), "D", "refused <capabilities>", "refused <capabilities>"},
  };
  services_->provide(QStringLiteral("org.freedesktop.Notifications"));
  std::size_t sent = 0;
  for (const Case& given : cases) {
    services_->answers[QStringLiteral("GetCapabilities")] = [&](const QDBusMessage& call) {
      return given.capabilities.isValid() ? call.createReply(given.capabilities)
                                          : call.createErrorReply(QDBusError::Failed, {});
    };
    desktop_->notify(given.title, given.body);
    ++sent;
    ASSERT_TRUE(until([&] { return services_->calls(kNotify).size() == sent; }));
    const QDBusMessage call = services_->calls(kNotify).back();
    EXPECT_EQ(call.signature(), "susssasa{sv}i");
    QVariantList arguments = call.arguments();
    const auto hints = qdbus_cast<QVariantMap>(arguments.takeAt(6));
    EXPECT_EQ(hints, (QVariantMap{{"desktop-entry", "com.zephrimark.offload"},
                                  {"category", "transfer.complete"},
                                  {"urgency", QVariant::fromValue(uchar{1})},
                                  {"sound-name", "complete"}}));
    EXPECT_EQ(arguments, (QVariantList{"Zephrimark Offload", 0U, "com.zephrimark.offload",
                                       given.title, given.sent, QStringList(), -1}))
        << given.title.toStdString();
  }
}

TEST_F(DesktopOnABus, ShowsProgressOnTheLauncher) {
  ASSERT_TRUE(bus_->services().connect({}, {}, "com.canonical.Unity.LauncherEntry", kUpdate,
                                       &*services_, SLOT(record(QDBusMessage))));
  waitForArrival();
  const auto updates = [this] { return services_->calls(kUpdate); };
  desktop_->setBadge(0);
  for (int tenth = 1; tenth < 10; ++tenth) desktop_->setBadge(tenth / 10.0);
  ASSERT_TRUE(until([&] { return updates().size() == 2; }));
  desktop_->setBadge(std::nan(""));
  desktop_->setBadge(0.5);
  desktop_->setBadge(-1);
  desktop_->setBadge(2);
  ASSERT_TRUE(until([&] { return updates().size() == 4; }));
  desktop_.reset();  // in the pause behind an update: taking away does not wait
  waitForArrival();

  std::vector<std::pair<double, bool>> shown;
  for (const QDBusMessage& update : updates()) {
    EXPECT_EQ(update.signature(), "sa{sv}");
    EXPECT_EQ(update.arguments().at(0), "application://com.zephrimark.offload.desktop");
    EXPECT_TRUE(update.path().startsWith("/com/canonical/unity/launcherentry/"));
    const auto values = qdbus_cast<QVariantMap>(update.arguments().at(1));
    EXPECT_EQ(values["progress"].typeId(), QMetaType::Double);
    EXPECT_EQ(values["progress-visible"].typeId(), QMetaType::Bool);
    shown.emplace_back(values["progress"].toDouble(), values["progress-visible"].toBool());
  }
  EXPECT_EQ(shown, (std::vector<std::pair<double, bool>>{
                       {0.1, true}, {0.9, true}, {0, false}, {1, true}, {0, false}}));
}

TEST_F(DesktopOnABus, InhibitsSleepAndAllowsItAgain) {
  services_->provide(QStringLiteral("org.freedesktop.login1"));
  services_->provide(QStringLiteral("org.gnome.SessionManager"));
  services_->answers[kUninhibit] = [](const QDBusMessage& call) { return call.createReply(); };
  services_->answers[kInhibit] = [this](const QDBusMessage& call) {
    const QVariantList asked = call.arguments();
    if (call.path() == "/org/gnome/SessionManager") return call.createReply(42U);
    if (asked.at(0) == "shutdown" && asked.at(3) == "block") {
      return call.createErrorReply(QDBusError::AccessDenied, {});
    }
    return grant(call);
  };
  const auto taken = [&](int holds) {
    return until([&] { return services_->calls(kInhibit).size() == std::size_t(holds) * 4; });
  };

  desktop_->allowSleep();
  desktop_->inhibitSleep("Copying.");
  desktop_->inhibitSleep("Changes nothing.");
  ASSERT_TRUE(taken(1));
  waitForArrival();
  std::vector<QVariantList> asked;
  for (const QDBusMessage& call : services_->calls(kInhibit)) asked.push_back(call.arguments());
  const QString who = "Zephrimark Offload";
  const QString why = "Copying.";
  EXPECT_EQ(asked, (std::vector<QVariantList>{{"com.zephrimark.offload", 0U, why, 5U},
                                              {"sleep:idle", who, why, "block"},
                                              {"shutdown", who, why, "block"},
                                              {"shutdown", who, why, "delay"}}));
  EXPECT_EQ(open(), 2);

  desktop_->allowSleep();
  EXPECT_TRUE(until([&] { return open() == 0 && services_->calls(kUninhibit).size() == 1; }));
  EXPECT_EQ(services_->calls(kUninhibit).back().arguments(), QVariantList{42U});

  desktop_->inhibitSleep("Again.");
  ASSERT_TRUE(taken(2));
  waitForArrival();
  EXPECT_EQ(open(), 2);
  desktop_.reset();
  EXPECT_TRUE(until([&] { return open() == 0 && services_->calls(kUninhibit).size() == 2; }));
}

TEST_F(DesktopOnABus, GivesBackWhatIsGrantedTooLate) {
  services_->provide(QStringLiteral("org.freedesktop.login1"));
  services_->provide(QStringLiteral("org.gnome.SessionManager"));
  services_->answers[kInhibit] = [](const QDBusMessage&) { return QDBusMessage(); };
  services_->answers[kUninhibit] = [](const QDBusMessage& call) { return call.createReply(); };
  for (const bool byItsEnd : {false, true}) {
    desktop_->inhibitSleep("Copying.");
    const std::size_t before = services_->calls(kUninhibit).size();
    ASSERT_TRUE(until([&] { return services_->calls(kInhibit).size() == 3 * (before + 1); }));
    desktop_->allowSleep();
    if (byItsEnd) desktop_.reset();
    const std::vector<QDBusMessage> calls = services_->calls(kInhibit);
    for (std::size_t i = calls.size() - 3; i < calls.size(); ++i) {
      const bool gnome = calls[i].path() == "/org/gnome/SessionManager";
      services_->answer(gnome ? calls[i].createReply(43U) : grant(calls[i]));
    }
    EXPECT_TRUE(until([&] { return open() == 0 && services_->calls(kUninhibit).size() > before; }));
    EXPECT_EQ(services_->calls(kUninhibit).back().arguments(), QVariantList{43U});
  }
}

TEST_F(DesktopOnABus, RevealsByBytesOrOpensTheFolder) {
  std::vector<QUrl> opened;
  FileManager files(bus_->application(), [&](const QUrl& folder) { opened.push_back(folder); });
  const PlatformKit::Path item = "/a b/\xff%\xc3\xbc#.mov";

  files.reveal(item);
  ASSERT_TRUE(until([&] { return opened.size() == 1; }));
  EXPECT_EQ(opened[0], QUrl("file:///a%20b")) << "no service";

  services_->answers[QStringLiteral("ShowItems")] = [](const QDBusMessage& call) {
    return call.createReply();
  };
  services_->provide(QStringLiteral("org.freedesktop.FileManager1"));
  files.reveal(item);
  files.reveal("/\xff/folder/");
  const auto calls = [&] { return services_->calls(QStringLiteral("ShowItems")); };
  ASSERT_TRUE(until([&] { return calls().size() == 2; }));
  EXPECT_EQ(calls()[0].arguments(),
            (QVariantList{QStringList{"file:///a%20b/%FF%25%C3%BC%23.mov"}, ""}));
  EXPECT_EQ(calls()[1].arguments(), (QVariantList{QStringList{"file:///%FF/folder"}, ""}));

  services_->answers.clear();
  files.reveal("/\xff/folder/");
  ASSERT_TRUE(until([&] { return opened.size() > 1; }));
  EXPECT_EQ(opened, (std::vector<QUrl>{opened[0], QUrl::fromEncoded("file:///%FF")}));
}

// Nothing of this may crash, block or be sent anywhere: without any bus, and with one that nobody
// serves on.
TEST_F(DesktopOnABus, IsSilentWhereNobodyServes) {
  const QDBusConnection none(QStringLiteral("none"));
  for (const QDBusConnection& connection : {none, bus_->application()}) {
    DesktopServices desktop(connection, connection);
    desktop.requestNotificationPermission();
    desktop.notify("Title", "Body");
    desktop.setBadge(0.5);
    desktop.inhibitSleep("Copying.");
    int opened = 0;
    FileManager files(connection, [&](const QUrl&) { ++opened; });
    files.reveal("/tmp/x");
    EXPECT_TRUE(until([&] { return opened == 1; }));
    waitForArrival();
    desktop.allowSleep();
  }
}

}  // namespace
}  // namespace ZephrimarkOffload::Testing
