import QtQuick
import QtQuick.Layouts
import ZephrimarkUI

// What this program is, and what others made of it.
MessageDialog {
    id: about

    property string version
    // "name" and "licence" of each.
    property var components: []

    title: qsTr("Zephrimark Offload %1").arg(version)
    symbol: "appicon"
    symbolSize: 48
    message: qsTr("Copies cards to several drives at once, reads every copy back and compares it "
                  + "with the card.\n\nMade with:")

    details: Repeater {
        model: about.components

        RowLayout {
            id: entry

            required property var modelData

            spacing: Brand.medium

            TextLabel {
                Layout.preferredWidth: 140
                text: entry.modelData.name
                textFormat: Text.PlainText
                font: Brand.caption
                elide: Text.ElideRight
            }

            TextLabel {
                Layout.fillWidth: true
                text: entry.modelData.licence
                textFormat: Text.PlainText
                font: Brand.caption
                color: Brand.tertiaryText
                elide: Text.ElideRight
            }
        }
    }
}
