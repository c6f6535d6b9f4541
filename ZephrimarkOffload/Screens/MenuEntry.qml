import QtQuick
import QtQuick.Templates as T
import ZephrimarkUI

// One entry of the application's menu.
T.MenuItem {
    id: entry

    implicitWidth: 200
    implicitHeight: Brand.controlHeight
    leftPadding: 10
    rightPadding: 10
    opacity: enabled ? 1 : 0.45
    font: Brand.callout

    Accessible.role: Accessible.MenuItem
    Accessible.name: text
    Accessible.onPressAction: if (entry.enabled) entry.triggered()

    contentItem: Text {
        text: entry.text
        textFormat: Text.PlainText
        font: entry.font
        color: entry.highlighted ? Brand.accentInk : Brand.text
        verticalAlignment: Text.AlignVCenter
    }

    background: Rectangle {
        radius: Brand.tiny
        color: entry.highlighted ? Brand.accentFill : "transparent"
    }
}
