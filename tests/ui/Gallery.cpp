// Shows the gallery; with a file name, saves a picture of it instead. See --help.
#include "ZephrimarkUI/Setup.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QTimer>
#include <QtGui/QGuiApplication>
#include <QtQml/QQmlApplicationEngine>
#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>

namespace {

void arrange(const QCommandLineParser& arguments, QQuickWindow& window) {
  const QStringList size = arguments.value("size").split('x');
  if (size.size() == 2) window.resize(size[0].toInt(), size[1].toInt());
  for (const QString& setting : arguments.values("set")) {
    const QString name = setting.section('.', 0, 0);
    QObject* object = name == "window" ? &window : window.findChild<QObject*>(name);
    const QString property = setting.section('.', 1).section('=', 0, 0);
    if (object == nullptr || !object->setProperty(property.toLatin1(), setting.section('=', 1))) {
      qWarning("There is no %s.", qUtf8Printable(setting));
    }
  }
  if (auto* item = window.findChild<QQuickItem*>(arguments.value("focus"))) {
    item->forceActiveFocus(Qt::TabFocusReason);
  }
  if (arguments.isSet("list")) {
    auto* popup = window.findChild<QObject*>("picker")->property("popup").value<QObject*>();
    QMetaObject::invokeMethod(popup, "open");
  }
}

}  // namespace

int main(int argc, char** argv) {
  QGuiApplication application(argc, argv);
  ZephrimarkUI::prepareApplication();

  QCommandLineParser arguments;
  arguments.addHelpOption();
  arguments.addOptions({{"set", "window.look=dark, steps.busy=true, ...", "name.property=value"},
                        {"focus", "A control for the keyboard", "name"},
                        {"list", "Open the list of the picker"},
                        {"size", "The size of the window", "WxH"}});
  arguments.addPositionalArgument("file", "The picture to write");
  arguments.process(application);

  QQmlApplicationEngine engine;
  ZephrimarkUI::prepareEngine(engine);
  engine.load(QUrl::fromLocalFile(QStringLiteral(UI_TESTS_FOLDER "/Gallery.qml")));
  if (engine.rootObjects().isEmpty()) return 1;
  auto* window = qobject_cast<QQuickWindow*>(engine.rootObjects().constFirst());
  // The window is laid out by then, and has shown the new state.
  QTimer laidOut;
  laidOut.setSingleShot(true);
  QObject::connect(&laidOut, &QTimer::timeout, window, [&] { arrange(arguments, *window); });
  laidOut.start(200);

  bool failed = false;
  QTimer still;
  still.setSingleShot(true);
  QObject::connect(&still, &QTimer::timeout, window, [&] {
    failed = !window->grabWindow().save(arguments.positionalArguments().constFirst());
    QCoreApplication::quit();
  });
  if (!arguments.positionalArguments().isEmpty()) still.start(900);
  return QGuiApplication::exec() != 0 || failed ? 1 : 0;
}
