import QtQuick
import ZephrimarkUI

// The outline of the control the keyboard is on, around the item it is declared in.
Rectangle {
    property bool shown: false
    // The corner radius of the item inside.
    property real inner: Brand.controlRadius
    property int gap: 2

    anchors.fill: parent
    anchors.margins: -(gap + border.width)
    visible: shown
    color: "transparent"
    radius: inner + gap + border.width
    border.width: 2
    border.color: Brand.focusRing
}
