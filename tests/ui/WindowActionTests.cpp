// Every control of the window does its work, with the pointer and with the keyboard alone.

#include "WindowFixture.h"

#include <QtCore/QDir>
#include <QtCore/QMimeData>
#include <QtGui/QDropEvent>
#include <QtTest/QTest>

namespace {

namespace Demo = ZephrimarkOffload::Demo;
using PlatformKit::Path;
using ZephrimarkOffload::Choosing;
using ZephrimarkOffload::Done;
using ZephrimarkOffload::Running;

const Path kShuttle = "/media/kim/Shuttle 1";
const Path kBackup = "/media/kim/Backup";
const Path kArchive = "/media/kim/Archive";

class WindowActions : public WindowTest {
 protected:
  template <class Stage>
  bool reaches() {
    return QTest::qWaitFor([&] { return ZephrimarkOffload::is<Stage>(model().stage()); });
  }

  /// Whether a dialog for folders with this title opened; closes it.
  bool folderDialogOpened(const QString& title) {
    for (QObject* dialog : window().findChildren<QObject*>()) {
      if (!dialog->inherits("QQuickFolderDialog") || dialog->property("title") != title) continue;
      const bool isOpen = QTest::qWaitFor([&] { return dialog->property("visible").toBool(); });
      QMetaObject::invokeMethod(dialog, "close");
      return isOpen;
    }
    return false;
  }

  /// Drops a folder of this computer, so far from the left, and answers its path.
  Path drop(double part) {
    QMimeData data;
    const QString folder = QDir::tempPath();
    data.setUrls({QUrl::fromLocalFile(folder)});
    const QPointF place(window().width() * part, window().height() / 2.0);
    const auto send = [&](auto&& event) { QCoreApplication::sendEvent(&window(), &event); };
    send(QDragEnterEvent(place.toPoint(), Qt::CopyAction, &data, Qt::LeftButton, {}));
    send(QDragMoveEvent(place.toPoint(), Qt::CopyAction, &data, Qt::LeftButton, {}));
    EXPECT_TRUE(texts().contains("Offload this") && texts().contains("Copy here"));
    send(QDropEvent(place, Qt::CopyAction, &data, Qt::LeftButton, {}));
    EXPECT_TRUE(hides("Offload this"));
    return folder.toStdString();
  }

  /// Return, once the button takes it: not at once, so that none meant for another is taken.
  void pressReturnFor(const QString& button) {
    EXPECT_TRUE(QTest::qWaitFor([&] {
      QQuickItem* item = control(button);
      return item != nullptr && item->property("defaultAction").toBool();
    }));
    press(Qt::Key_Return);
  }

  [[nodiscard]] QString focusedName() {
    QQuickItem* item = window().activeFocusItem();
    return item == nullptr ? QString() : nameOf(item);
  }

  /// Whether the control that has the keyboard shows it.
  [[nodiscard]] bool isFocusSeen() const {
    for (QQuickItem* item : items()) {
      if (QByteArray(item->metaObject()->className()).startsWith("FocusRing")) return true;
    }
    return false;
  }
};

}  // namespace

TEST_F(WindowActions, cardAndDrivesAreChosen) {
  open("setup-ready");
  click("DRONE");
  EXPECT_EQ(model().setup().source()->path, Path("/media/kim/DRONE"));
  click("DRONE");
  EXPECT_TRUE(control("DRONE")->property("checked").toBool()) << "a second click unchecks it";
  EXPECT_TRUE(shows("86 files · 21.48 GB · DJI"));

  click("Add Archive");
  EXPECT_EQ(model().setup().destinations(), (std::vector<Path>{kShuttle, kBackup, kArchive}));
  EXPECT_TRUE(hides("Choose Folder…")) << "there is no place for a fourth";
  click("Remove");
  EXPECT_EQ(model().setup().destinations(), (std::vector<Path>{kBackup, kArchive}));
  EXPECT_TRUE(shows("Add Shuttle 1"));

  click("Use a Folder…");
  EXPECT_TRUE(
      folderDialogOpened("Choose a card or folder to offload. It's only read, never changed."));
  click("Choose Folder…");
  EXPECT_TRUE(folderDialogOpened("Choose a drive or folder to copy to."));
}

TEST_F(WindowActions, folderAndChecksAreChosen) {
  open("setup-ready");
  click("Name");
  click("{date}/{camera}/{card}");
  EXPECT_TRUE(shows("2026-10-07/Canon/A001"));
  EXPECT_EQ(control("Folder template"), nullptr);
  click("Name");
  click("Custom…");
  ASSERT_TRUE(QTest::qWaitFor([this] { return control("Folder template") != nullptr; }));
  EXPECT_EQ(control("Project"), nullptr);
  click("Folder template");
  press(Qt::Key_A, Qt::ControlModifier);
  type("{project}/{card}");
  click("Project");
  type("Harbour");
  EXPECT_TRUE(shows("Harbour/A001"));

  click("Checksum");
  click("SHA-256");
  EXPECT_EQ(model().setup().options().algorithm, HashKit::HashAlgorithm::sha256);
  click("Read the card twice");
  click("Eject the card when verified");
  click("Save a card image for Kestrine");
  EXPECT_FALSE(model().setup().options().verifySource);
  EXPECT_TRUE(model().setup().options().ejectWhenDone);
  EXPECT_TRUE(model().setup().options().saveCardImage);
}

TEST_F(WindowActions, foldersAreDroppedOnTheHalves) {
  open("setup-ready");
  const Path folder = drop(0.25);
  EXPECT_TRUE(QTest::qWaitFor([&] { return model().setup().source()->path == folder; }));
  drop(0.75);
  EXPECT_TRUE(QTest::qWaitFor([&] { return model().setup().destinations().back() == folder; }));
  EXPECT_TRUE(shows("Available when offloading a whole card."));
}

TEST_F(WindowActions, anOffloadIsStoppedOnlyWhenThatIsMeant) {
  auto scene = Demo::sceneNamed("setup-ready").value();
  scene.script = Demo::sceneNamed("running")->script;
  open(scene);
  click("Start Offload");
  ASSERT_TRUE(reaches<Running>());
  ASSERT_TRUE(shows("37%"));
  for (const Qt::Key refusal : {Qt::Key_Escape, Qt::Key_Return}) {
    press(Qt::Key_Escape);
    ASSERT_TRUE(shows("Stop the offload?"));
    ASSERT_TRUE(QTest::qWaitFor([this] { return focusedName() == "Keep Going"; }));
    press(refusal);
    ASSERT_TRUE(hides("Stop the offload?"));
    EXPECT_FALSE(std::get<Running>(model().stage()).isStopping);
  }
  click("Stop");
  ASSERT_TRUE(QTest::qWaitFor([this] { return focusedName() == "Keep Going"; }));
  press(Qt::Key_Tab);
  EXPECT_EQ(focusedName(), "Stop");
  press(Qt::Key_Space);
  EXPECT_TRUE(reaches<Choosing>());
  EXPECT_TRUE(hides("Stop the offload?"));
  EXPECT_TRUE(window().isVisible());
}

TEST_F(WindowActions, theWindowClosesOnceTheOffloadHasStopped) {
  open("running");
  window().close();
  ASSERT_TRUE(shows("Keep Going"));
  EXPECT_TRUE(window().isVisible());
  press(Qt::Key_Escape);
  ASSERT_TRUE(hides("Keep Going"));
  press(Qt::Key_Q, Qt::ControlModifier);
  ASSERT_TRUE(shows("Keep Going"));
  ASSERT_TRUE(QTest::qWaitFor([this] { return focusedName() == "Keep Going"; }));
  press(Qt::Key_Tab);
  press(Qt::Key_Space);
  EXPECT_TRUE(QTest::qWaitFor([this] { return !window().isVisible(); }));
  EXPECT_TRUE(reaches<Choosing>());
}

TEST_F(WindowActions, theDoneScreenLeadsOn) {
  open("done-image");
  const Path folder = kShuttle / "2026-10-07/A001";
  click("Open Report");
  EXPECT_EQ(opened_, std::vector<Path>{folder / "Offload Report.html"});
  click("Show in Files");
  ASSERT_EQ(revealed_, std::vector<Path>{folder});
  click("Eject Card");
  EXPECT_TRUE(shows("Ejected A001. You can take it out now."));
  EXPECT_TRUE(QTest::qWaitFor([this] { return control("Eject Card") == nullptr; }));
  EXPECT_EQ(control("Try Again"), nullptr);
  pressReturnFor("New Offload");
  EXPECT_TRUE(reaches<Choosing>());
  EXPECT_TRUE(shows("Start Offload"));
}

TEST_F(WindowActions, aFailureIsTriedAgainOrLeft) {
  auto scene = Demo::sceneNamed("done-failed").value();
  int runs = 0;
  scene.script = [&runs, play = scene.script](const Demo::ScriptedRun& run) {
    ++runs;
    return play(run);
  };
  open(scene);
  ASSERT_EQ(runs, 1);
  click("Try Again");
  ASSERT_TRUE(reaches<Done>());
  EXPECT_EQ(runs, 2);
  open("failed");
  pressReturnFor("Back");
  EXPECT_TRUE(reaches<Choosing>());
}

TEST_F(WindowActions, theMenuOpensByItsKey) {
  open("setup-ready");
  press(Qt::Key_F10);
  ASSERT_TRUE(shows("About Zephrimark Offload"));
  EXPECT_FALSE(control("Check for Updates…")->isEnabled());
  press(Qt::Key_Down);
  press(Qt::Key_Return);
  ASSERT_TRUE(QTest::qWaitFor([this] { return focusedName() == "OK"; }));
  press(Qt::Key_Escape);
  EXPECT_TRUE(hides("OK"));
  click("Menu");
  click("Quit");
  EXPECT_TRUE(QTest::qWaitFor([this] { return !window().isVisible(); }));
}

TEST_F(WindowActions, theKeyboardReachesEverythingInOrder) {
  const std::vector<std::pair<std::string, QStringList>> orders = {
      {"setup-custom",
       {"Menu", "A001", "DRONE", "Use a Folder…", "Remove", "Remove", "Add Archive",
        "Choose Folder…", "Name, Custom…", "Folder template", "Project", "Checksum, XXH64",
        "Read the card twice", "Eject the card when verified", "Save a card image for Kestrine",
        "Start Offload"}},
      {"running", {"Menu", "Stop"}},
      {"done-failed",
       {"Menu", "Show in Files", "Show in Files", "Show in Files", "Open Report", "Eject Card",
        "Try Again", "New Offload"}},
      {"failed", {"Menu", "Back"}}};
  for (const auto& [scene, order] : orders) {
    open(scene, {720, 600});
    ASSERT_TRUE(shows(order.back()));
    control("Menu")->forceActiveFocus(Qt::TabFocusReason);
    QStringList reached;
    for (int i = 0; i < order.size(); ++i) {
      reached << focusedName();
      EXPECT_TRUE(isFocusSeen()) << scene << ": " << reached.back().toStdString();
      press(Qt::Key_Tab);
    }
    EXPECT_EQ(reached, order) << scene << ": " << reached.join(", ").toStdString();
    EXPECT_EQ(focusedName(), "Menu");
  }
}
