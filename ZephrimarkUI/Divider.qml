import QtQuick
import QtQuick.Layouts
import QtQuick.Window
import ZephrimarkUI

// A line across, of whole pixels of the screen.
Rectangle {
    implicitHeight: Math.floor(Math.max(1, Screen.devicePixelRatio)) / Screen.devicePixelRatio
    implicitWidth: Brand.huge
    Layout.fillWidth: true
    color: Brand.border
}
