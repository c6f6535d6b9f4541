#pragma once

#include <QtGui/QIcon>
#include <QtGui/QImage>

class QQmlEngine;

namespace ZephrimarkUI {

/// Sets what has to be set for the whole program: the style of the controls, sharp text, the font.
/// Call it once, after the QGuiApplication is made and before any engine is. Main thread.
void prepareApplication();

/// Gives `engine` the module ZephrimarkUI and its icons ("image://icon/..."). Call it before a file
/// is loaded into the engine. Main thread.
void prepareEngine(QQmlEngine& engine);

/// The application's icon, `edge` pixels wide and high (more than 0). Any thread.
QImage applicationImage(int edge);

/// The same in the sizes that windows, task bars and switchers show. Main thread.
QIcon applicationIcon();

}  // namespace ZephrimarkUI
