#pragma once

#include <QSettings>

namespace ZephrimarkOffload {

/// The form of the settings file: lines "key=value" below "[General]", in UTF-8. Values are texts
/// or, with commas between, lists of texts, in quotation marks where they have to be. Unlike Qt's
/// own form of such files it holds nothing else, since Qt makes objects of any kind and size out of
/// what a damaged file says. Any content reads as some values; of a file of more than 1 MiB only
/// the beginning is read. Any thread.
QSettings::Format settingsFormat();

}  // namespace ZephrimarkOffload
