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

    signal removed

    topPadding: 6
    bottomPadding: 6

    Accessible.role: Accessible.ListItem
    Accessible.name: name
    Accessible.description: place + ", " + free

    RowLayout {
        anchors.fill: parent
        spacing: 10

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
            onClicked: row.removed()
        }
    }
}
