import QtQuick
import QtQuick.Templates as T
import ZephrimarkUI

// One line of a Picker's list.
T.ItemDelegate {
    id: entry

    property bool current: false
    property bool separator: false

    enabled: !separator
    hoverEnabled: true
    implicitHeight: separator ? 11 : Brand.controlHeight
    leftPadding: 28
    rightPadding: 10

    Accessible.ignored: separator

    contentItem: Text {
        text: entry.text
        visible: !entry.separator
        textFormat: Text.PlainText
        font: entry.font
        color: entry.highlighted ? Brand.accentInk : Brand.text
        elide: Text.ElideRight
        verticalAlignment: Text.AlignVCenter

        Icon {
            x: -20
            anchors.verticalCenter: parent.verticalCenter
            visible: entry.current
            name: "checkmark"
            size: 14
            color: parent.color
        }
    }

    background: Rectangle {
        radius: Brand.controlRadius - 1
        color: entry.highlighted && !entry.separator ? Brand.accentFill : "transparent"

        Divider {
            visible: entry.separator
            anchors.verticalCenter: parent.verticalCenter
            width: parent.width
        }
    }
}
