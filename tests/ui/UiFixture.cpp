#include "UiFixture.h"

#include "ZephrimarkUI/Setup.h"

#include <stdexcept>

#include <QtGui/QAccessible>
#include <QtGui/QGuiApplication>
#include <QtQml/QQmlComponent>
#include <QtQml/QQmlExpression>
#include <QtTest/QTest>

namespace {

QStringList warnings;

void collect(QtMsgType type, const QMessageLogContext&, const QString& text) {
  if (type != QtDebugMsg && type != QtInfoMsg) warnings.append(text);
}

// What a Repeater makes is no child of the window as an object, so this goes by items.
QQuickItem* findItem(QQuickItem* from, const QString& name) {
  if (from->objectName() == name) return from;
  for (QQuickItem* child : from->childItems()) {
    if (QQuickItem* found = findItem(child, name)) return found;
  }
  return nullptr;
}

/// One application for all tests of the process, which ends before the program does: Qt does not
/// survive being taken down among the globals.
class Application final : public testing::Environment {
 public:
  void SetUp() override {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    application_ = std::make_unique<QGuiApplication>(count_, arguments_);
    ZephrimarkUI::prepareApplication();
    QAccessible::setActive(true);
  }
  void TearDown() override { application_.reset(); }

 private:
  char name_[3] = "ui";
  char* arguments_[2] = {name_, nullptr};
  int count_ = 1;
  std::unique_ptr<QGuiApplication> application_;
};

[[maybe_unused]] const testing::Environment* const environment =
    testing::AddGlobalTestEnvironment(new Application);

}  // namespace

void UiTest::SetUp() {
  warnings.clear();
  qInstallMessageHandler(collect);
  engine_ = std::make_unique<QQmlEngine>();
  ZephrimarkUI::prepareEngine(*engine_);
}

void UiTest::TearDown() {
  root_.reset();
  engine_.reset();
  qInstallMessageHandler(nullptr);
  EXPECT_TRUE(warnings.isEmpty()) << warnings.join(u'\n').toStdString();
}

std::unique_ptr<QObject> UiTest::make(const QString& text) {
  QQmlComponent component(engine_.get());
  component.setData(text.toUtf8(), QUrl(QStringLiteral("test.qml")));
  std::unique_ptr<QObject> made(component.create());
  EXPECT_NE(made, nullptr) << component.errorString().toStdString();
  return made;
}

QVariant UiTest::value(const QString& expression) {
  const auto made = make(
      "import QtQml; import ZephrimarkUI; QtObject { property var value: " + expression + " }");
  return made ? made->property("value") : QVariant();
}

void UiTest::show() {
  QQmlComponent component(engine_.get(),
                          QUrl::fromLocalFile(QStringLiteral(UI_TESTS_FOLDER "/Gallery.qml")));
  root_.reset(component.create());
  window_ = qobject_cast<QQuickWindow*>(root_.get());
  ASSERT_NE(window_, nullptr) << component.errorString().toStdString();
  window_->requestActivate();
  ASSERT_TRUE(QTest::qWaitForWindowActive(window_));
}

QQuickItem* UiTest::item(const QString& name) const {
  QQuickItem* found = findItem(window_->contentItem(), name);
  if (found == nullptr) throw std::runtime_error("The gallery lacks " + name.toStdString());
  return found;
}

void UiTest::focus(QQuickItem* item) {
  item->forceActiveFocus(Qt::TabFocusReason);
}

void UiTest::press(Qt::Key key, Qt::KeyboardModifiers modifiers) {
  QTest::keyClick(window_, key, modifiers);
}
