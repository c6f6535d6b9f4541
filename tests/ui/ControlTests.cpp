#include "UiFixture.h"

#include <QtGui/QAccessible>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

namespace {

class Controls : public UiTest {
 protected:
  void SetUp() override {
    UiTest::SetUp();
    show();
  }

  /// What a screen reader does.
  static void act(QObject* object, const QString& action) {
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(object);
    ASSERT_NE(accessible, nullptr);
    ASSERT_NE(accessible->actionInterface(), nullptr);
    ASSERT_TRUE(accessible->actionInterface()->actionNames().contains(action));
    accessible->actionInterface()->doAction(action);
  }

  static QString nameOf(QObject* object) {
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(object);
    return accessible != nullptr ? accessible->text(QAccessible::Name) : QString();
  }
};

}  // namespace

TEST_F(Controls, buttonIsPressedByKeysAndByAssistiveTechnology) {
  auto* button = item("plain");
  QSignalSpy clicked(button, SIGNAL(clicked()));
  QSignalSpy started(item("start"), SIGNAL(clicked()));
  focus(button);
  for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter}) press(key);
  EXPECT_EQ(clicked.count(), 3);
  act(button, QAccessibleActionInterface::pressAction());
  EXPECT_EQ(clicked.count(), 4);
  EXPECT_EQ(nameOf(button), "Use a Folder…");

  button->setEnabled(false);
  act(button, QAccessibleActionInterface::pressAction());
  EXPECT_EQ(clicked.count(), 4);
  EXPECT_EQ(started.count(), 0);
}

TEST_F(Controls, returnStartsTheDefaultActionUnlessAControlTakesIt) {
  auto* start = item("start");
  QSignalSpy started(start, SIGNAL(clicked()));
  for (const char* name : {"entry", "plain", "toggle", "row1"}) {
    focus(item(name));
    press(Qt::Key_Return);
    EXPECT_EQ(started.count(), 0) << name;
  }
  window_->activeFocusItem()->setFocus(false);
  start->setEnabled(false);
  press(Qt::Key_Return);
  EXPECT_EQ(started.count(), 0);
  start->setEnabled(true);
  press(Qt::Key_Enter);
  EXPECT_EQ(started.count(), 1);

  // It opened a dialog, which has Return for itself now.
  auto* dialog = window_->findChild<QObject*>("tell");
  ASSERT_TRUE(QTest::qWaitFor([&] { return dialog->property("opened").toBool(); }));
  press(Qt::Key_Return);
  ASSERT_TRUE(QTest::qWaitFor([&] { return !dialog->property("visible").toBool(); }));
  EXPECT_EQ(started.count(), 1);
}

TEST_F(Controls, confirmationNeedsADeliberatePress) {
  auto* dialog = window_->findChild<QObject*>("confirm");
  QSignalSpy accepted(dialog, SIGNAL(accepted()));
  QSignalSpy rejected(dialog, SIGNAL(rejected()));
  QSignalSpy behind(item("plain"), SIGNAL(clicked()));
  const QList<QList<Qt::Key>> ways = {{Qt::Key_Escape},
                                      {Qt::Key_Return},
                                      {Qt::Key_Tab, Qt::Key_Return},
                                      {Qt::Key_Tab, Qt::Key_Tab, Qt::Key_Space}};
  for (const auto& keys : ways) {
    focus(item("plain"));
    window_->setProperty("confirming", true);
    ASSERT_TRUE(QTest::qWaitFor([&] { return dialog->property("opened").toBool(); }));
    for (const Qt::Key key : keys) press(key);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !window_->property("confirming").toBool(); }));
  }
  EXPECT_EQ(accepted.count(), 1);
  EXPECT_EQ(rejected.count(), 3);
  EXPECT_EQ(behind.count(), 0);
  EXPECT_TRUE(item("plain")->hasActiveFocus()) << "the keyboard returns to where it was";
}

TEST_F(Controls, pickerOpensBeforeItChangesAndPassesOverSeparators) {
  auto* picker = item("picker");
  QSignalSpy activated(picker, SIGNAL(activated(int)));
  const auto choose = [&](std::initializer_list<Qt::Key> keys) {
    activated.clear();
    focus(picker);
    for (const Qt::Key key : keys) press(key);
    return activated.isEmpty() ? -1 : activated.last().first().toInt();
  };
  EXPECT_EQ(choose({Qt::Key_Down, Qt::Key_Down, Qt::Key_Return}), 1);
  EXPECT_EQ(choose({Qt::Key_Return, Qt::Key_Down, Qt::Key_Return}), 3) << "over the separator";
  EXPECT_EQ(choose({Qt::Key_Space, Qt::Key_Up, Qt::Key_Space}), 1) << "and back";
  EXPECT_EQ(choose({Qt::Key_Up, Qt::Key_End, Qt::Key_Enter}), 4);
  EXPECT_EQ(choose({Qt::Key_Down, Qt::Key_Up, Qt::Key_Escape}), -1);
  EXPECT_EQ(picker->property("currentIndex").toInt(), 4);
  EXPECT_EQ(nameOf(picker).toStdString(), "Checksum, C4");
  act(picker, QAccessibleActionInterface::pressAction());
  EXPECT_TRUE(picker->property("popup").value<QObject*>()->property("visible").toBool());
}

TEST_F(Controls, rowsAreChosenOneAtATimeAndTogglesFlip) {
  auto* first = item("row0");
  auto* second = item("row1");
  QSignalSpy clicked(second, SIGNAL(clicked()));
  focus(first);
  press(Qt::Key_Down);
  EXPECT_TRUE(second->hasActiveFocus());
  EXPECT_TRUE(first->property("checked").toBool()) << "looking at a row does not choose it";
  press(Qt::Key_Return);
  EXPECT_TRUE(second->property("checked").toBool());
  EXPECT_FALSE(first->property("checked").toBool());
  press(Qt::Key_Return);
  EXPECT_TRUE(second->property("checked").toBool()) << "a choice is not taken back";
  press(Qt::Key_Up);
  press(Qt::Key_Space);
  EXPECT_FALSE(second->property("checked").toBool());
  act(second, QAccessibleActionInterface::pressAction());
  EXPECT_TRUE(second->property("checked").toBool());
  EXPECT_EQ(clicked.count(), 3);
  EXPECT_EQ(nameOf(second), "NIKON Z 8");

  auto* toggle = item("toggle");
  QSignalSpy toggled(toggle, SIGNAL(toggled()));
  focus(toggle);
  press(Qt::Key_Space);
  EXPECT_TRUE(toggle->property("checked").toBool());
  press(Qt::Key_Return);
  EXPECT_FALSE(toggle->property("checked").toBool());
  act(toggle, QAccessibleActionInterface::toggleAction());
  EXPECT_TRUE(toggle->property("checked").toBool());
  EXPECT_EQ(toggled.count(), 3);
}

TEST_F(Controls, stepBarIsOneSentence) {
  auto* bar = item("steps");
  const struct {
    int current;
    const char* name;
  } cases[] = {{0, "Step 1 of 4: Card. Wait."},
               {3, "Step 4 of 4: Done. Wait."},
               {4, "Step 4 of 4: Done. Wait."}};
  bar->setProperty("status", "Wait.");
  for (const auto& [current, name] : cases) {
    bar->setProperty("current", current);
    EXPECT_EQ(nameOf(bar).toStdString(), name);
  }
  for (const bool busy : {false, true}) {
    bar->setProperty("busy", busy);
    EXPECT_EQ(QAccessible::queryAccessibleInterface(bar)->childCount(), 0);
  }
  // Percent signs of a name are no placeholders.
  bar->setProperty("status", "Copying CARD%1 100%");
  bar->setProperty("steps", QStringList{"A%2", "B"});
  bar->setProperty("current", 0);
  EXPECT_EQ(nameOf(bar).toStdString(), "Step 1 of 2: A%2. Copying CARD%1 100%");
}

TEST_F(Controls, progressSaysItsValueAndNeverGlidesBack) {
  auto* line = item("progress");
  QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(line);
  EXPECT_EQ(accessible->role(), QAccessible::ProgressBar);
  EXPECT_EQ(accessible->text(QAccessible::Description), "46 percent");
  line->setProperty("value", 0.9);
  EXPECT_LT(line->property("shownPosition").toReal(), 0.9);
  EXPECT_TRUE(QTest::qWaitFor(
      [&] { return qFuzzyCompare(line->property("shownPosition").toReal(), 0.9); }));
  line->setProperty("value", 0.1);
  EXPECT_DOUBLE_EQ(line->property("shownPosition").toReal(), 0.1);
}

TEST_F(Controls, everythingIsReachedByTabAndScrolledIntoView) {
  window_->resize(820, 420);
  focus(item("row0"));
  auto* entry = item("entry");
  auto* toggle = item("toggle");
  QStringList visited;
  for (int i = 0; i < 40 && window_->activeFocusItem() != toggle; ++i) {
    press(Qt::Key_Tab);
    visited.append(window_->activeFocusItem()->objectName());
    if (window_->activeFocusItem() != entry && window_->activeFocusItem() != toggle) continue;
    auto* scroll = item("scroll");
    const QRectF place = scroll->mapRectFromItem(window_->activeFocusItem(),
                                                 window_->activeFocusItem()->boundingRect());
    EXPECT_TRUE(scroll->boundingRect().contains(place)) << visited.last().toStdString();
  }
  EXPECT_TRUE(visited.contains("row1") && visited.contains("picker") && visited.contains("toggle"));
  EXPECT_TRUE(item("elided")->property("truncated").toBool());
}
