#include "WindowFixture.h"

#include "ZephrimarkUI/Setup.h"

#include <stdexcept>

#include <QtCore/QTemporaryDir>
#include <QtGui/QAccessible>
#include <QtGui/QGuiApplication>
#include <QtTest/QTest>

namespace {

namespace Demo = ZephrimarkOffload::Demo;

QStringList warnings;

void collect(QtMsgType type, const QMessageLogContext&, const QString& text) {
  if (type != QtDebugMsg && type != QtInfoMsg) warnings.append(text);
}

void startApplication() {
  if (QCoreApplication::instance() != nullptr) return;
  static const QTemporaryDir folder;
  qputenv("QT_QPA_PLATFORM", "offscreen");
  qputenv("QT_QUICK_BACKEND", "software");
  for (const char* variable : {"XDG_RUNTIME_DIR", "XDG_CONFIG_HOME", "XDG_CACHE_HOME"}) {
    qputenv(variable, folder.path().toUtf8());
  }
  static int count = 1;
  static char name[] = "window";
  static char* arguments[] = {name, nullptr};
  static const QGuiApplication application(count, arguments);
  ZephrimarkUI::prepareApplication();
  QAccessible::setActive(true);
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
  startApplication();
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
  ASSERT_TRUE(QTest::qWaitFor([this] { return demo_->isSettled(); }));
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
    if ((takesTab(item) || isEntry) && nameOf(item).startsWith(name)) return item;
  }
  return nullptr;
}

void WindowTest::click(const QString& name) {
  QTest::qWaitFor([&] { return control(name) != nullptr && control(name)->isEnabled(); });
  QQuickItem* item = control(name);
  if (item == nullptr) throw std::runtime_error("There is no control " + name.toStdString());
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
