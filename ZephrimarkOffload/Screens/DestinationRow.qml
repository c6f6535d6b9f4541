import QtQuick
import QtQuick.Layouts
import ZephrimarkUI

// One chosen destination.
Panel {
    id: row

    required property string name
    required property string place
    required property string free
    required property bool isShort
    required property bool isInternal

    signal removed(byKeyboard: bool)

    topPadding: 6
    bottomPadding: 6

    RowLayout {
        anchors.fill: parent
        spacing: 10

        // Not on the panel, whose template puts a role of its own in place of any other.
        Accessible.role: Accessible.ListItem
        Accessible.name: row.name
        Accessible.description: row.place + ", " + row.free

        Icon {
            name: row.isInternal ? "laptopcomputer" : "externaldrive.fill"
            color: row.isInternal ? Brand.orange : Brand.accent
            size: 20
        }

        ColumnLayout {
            Layout.fillWidth: true
            spacing: 0

            ElidedLabel {
                Layout.fillWidth: true
                text: row.name
                font: Brand.calloutStrong
            }

            ElidedLabel {
                Layout.fillWidth: true
                text: row.place
                font: Brand.caption
                color: Brand.secondaryText
            }
        }

        Figures {
            text: row.free
            font: Brand.callout
            color: row.isShort ? Brand.red : Brand.secondaryText
        }

        PushButton {
            symbol: "minus.circle"
            borderless: true
            tip: qsTr("Remove")
            Accessible.description: row.name
            onClicked: row.removed(visualFocus)
        }
    }
}
