#pragma once

class QQmlEngine;

namespace ZephrimarkUI {

/// Sets what has to be set for the whole program: the style of the controls, sharp text, the font.
/// Call it once, after the QGuiApplication is made and before any engine is. Main thread.
void prepareApplication();

/// Gives `engine` the module ZephrimarkUI and its icons ("image://icon/..."). Call it before a file
/// is loaded into the engine. Main thread.
void prepareEngine(QQmlEngine& engine);

}  // namespace ZephrimarkUI
