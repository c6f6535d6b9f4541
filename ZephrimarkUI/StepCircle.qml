import QtQuick
import QtQuick.Window
import ZephrimarkUI

// The mark of one step: its number, or a check when it is complete.
Rectangle {
    id: circle

    property int number: 1
    property bool complete: false
    property bool current: false

    // One and a half, in whole pixels of the screen: a half one would be missing on some sides.
    readonly property real line: Math.max(1, Math.round(1.5 * Screen.devicePixelRatio))
                                 / Screen.devicePixelRatio

    implicitWidth: 22
    implicitHeight: 22
    radius: width / 2
    color: complete ? Brand.accent : current ? Brand.faded(Brand.accent, 0.15) : "transparent"
    border.width: complete ? 0 : line
    border.color: current ? Brand.accent : Brand.faded(Brand.secondaryText, 0.4)

    Icon {
        anchors.centerIn: parent
        visible: circle.complete
        name: "checkmark.bold"
        size: 14
        color: Brand.window
    }

    Text {
        anchors.centerIn: parent
        visible: !circle.complete
        text: circle.number
        font: Brand.badge
        color: circle.current ? Brand.accent : Brand.secondaryText
    }
}
