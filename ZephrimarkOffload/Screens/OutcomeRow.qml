import QtQuick
import QtQuick.Layouts
import ZephrimarkUI

// What came of an offload on one drive, or of its card image.
Panel {
    id: row

    required property string name
    required property string detail
    required property string place
    required property bool isVerified
    // Empty: there is nothing to show in the file browser.
    property string buttonText

    signal revealed

    topPadding: 8
    bottomPadding: 8

    RowLayout {
        anchors.fill: parent
        spacing: 10

        // Not on the panel, whose template puts a role of its own in place of any other.
        Accessible.role: Accessible.ListItem
        Accessible.name: row.name
        Accessible.description: row.detail

        Icon {
            name: row.isVerified ? "checkmark.circle.fill" : "exclamationmark.circle.fill"
            color: row.isVerified ? Brand.green : Brand.orange
            size: 22
        }

        ColumnLayout {
            Layout.fillWidth: true
            spacing: 1

            ElidedLabel {
                Layout.fillWidth: true
                text: row.name
                font: Brand.bodyStrong
            }

            TextLabel {
                Layout.fillWidth: true
                text: row.detail
                textFormat: Text.PlainText
                font: Brand.callout
                color: Brand.secondaryText
                wrapMode: Text.Wrap
            }

            ElidedLabel {
                visible: text !== ""
                Layout.fillWidth: true
                text: row.place
                font: Brand.caption
                color: Brand.tertiaryText
            }
        }

        PushButton {
            visible: row.buttonText !== ""
            text: row.buttonText
            small: true
            Accessible.description: row.name
            onClicked: row.revealed()
        }
    }
}
