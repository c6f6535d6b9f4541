#include "WindowFixture.h"

#include <stdexcept>

#include <QtCore/QCoreApplication>
#include <QtGui/QAccessible>
#include <QtTest/QTest>

namespace {

namespace Demo = ZephrimarkOffload::Demo;

QStringList warnings;

void collect(QtMsgType type, const QMessageLogContext&, const QString& text) {
  if (type != QtDebugMsg && type != QtInfoMsg) warnings.append(text);
}

void collectVisible(QQuickItem* item, std::vector<QQuickItem*>& found) {
  if (!item->isVisible() || item->opacity() == 0) return;
  found.push_back(item);
  for (QQuickItem* child : item->childItems()) collectVisible(child, found);
}

bool takesTab(const QQuickItem* item) {
  return item->activeFocusOnTab() ||
         (item->property("focusPolicy").toInt() & Qt::TabFocus) == Qt::TabFocus;
}

}  // namespace

void WindowTest::SetUp() {
  warnings.clear();
  qInstallMessageHandler(collect);
}

void WindowTest::TearDown() {
  demo_.reset();
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  qInstallMessageHandler(nullptr);
  EXPECT_TRUE(warnings.isEmpty()) << warnings.join(u'\n').toStdString();
}

void WindowTest::open(const std::string& scene, QSize size) {
  open(Demo::sceneNamed(scene).value(), size);
}

void WindowTest::open(Demo::Scene scene, QSize size) {
  Demo::DemoWindow::Options options;
  options.size = size;
  options.reveal = [this](const PlatformKit::Path& path) { revealed_.push_back(path); };
  options.open = [this](const PlatformKit::Path& path) { opened_.push_back(path); };
  demo_ = std::make_unique<Demo::DemoWindow>(std::move(scene), std::move(options));
  ASSERT_TRUE(demo_->isShown());
  window().requestActivate();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));
  ASSERT_TRUE(QTest::qWaitFor([this] { return demo_->isReady(); }));
}

std::vector<QQuickItem*> WindowTest::items() const {
  std::vector<QQuickItem*> found;
  collectVisible(demo_->window().contentItem(), found);
  return found;
}

QStringList WindowTest::texts() const {
  QStringList texts;
  for (const QQuickItem* item : items()) {
    const QVariant text = item->property("text");
    if (text.isValid() && !text.toString().isEmpty()) texts << text.toString();
  }
  return texts;
}

bool WindowTest::shows(const QString& text) const {
  return QTest::qWaitFor([&] { return texts().contains(text); });
}

bool WindowTest::hides(const QString& text) const {
  return QTest::qWaitFor([&] { return !texts().contains(text); });
}

QString WindowTest::nameOf(QObject* object) {
  QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(object);
  return accessible != nullptr ? accessible->text(QAccessible::Name) : QString();
}

QQuickItem* WindowTest::control(const QString& name) const {
  for (QQuickItem* item : items()) {
    const bool isEntry = item->inherits("QQuickMenuItem") || item->inherits("QQuickItemDelegate");
    if ((takesTab(item) && nameOf(item).startsWith(name)) ||
        (isEntry && item->property("text") == name)) {
      return item;
    }
  }
  return nullptr;
}

void WindowTest::click(const QString& name) {
  const auto isThere = [&] { return control(name) != nullptr && control(name)->isEnabled(); };
  if (!QTest::qWaitFor(isThere)) throw std::runtime_error("No control " + name.toStdString());
  QQuickItem* item = control(name);
  if (takesTab(item)) item->forceActiveFocus(Qt::OtherFocusReason);  // scrolls to it
  QTest::mouseClick(&window(), Qt::LeftButton, {},
                    item->mapToScene({item->width() / 2, item->height() / 2}).toPoint());
}

void WindowTest::press(Qt::Key key, Qt::KeyboardModifiers modifiers) {
  QTest::keyClick(&window(), key, modifiers);
}

void WindowTest::type(const QString& text) {
  for (const QChar letter : text) QTest::keyClick(&window(), letter.toLatin1());
}
