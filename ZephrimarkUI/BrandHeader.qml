import QtQuick
import QtQuick.Layouts
import ZephrimarkUI

// The top of the window: the application's icon, a title above a subtitle, and what is declared
// inside at the end of the row.
Item {
    id: header

    property string title
    property string subtitle
    default property alias trailing: slot.data

    implicitWidth: row.implicitWidth + 2 * Brand.margin
    implicitHeight: row.implicitHeight + 20

    DitheredGradient {
        anchors.fill: parent
        from: Brand.mixed(Brand.window, Brand.accent, 0.13)
        to: Brand.mixed(Brand.window, Brand.accent, 0.03)
    }

    RowLayout {
        id: row

        anchors.fill: parent
        anchors.leftMargin: Brand.margin
        anchors.rightMargin: Brand.margin
        anchors.topMargin: 10
        anchors.bottomMargin: 10
        spacing: Brand.medium

        Icon {
            name: "appicon"
            size: 44
        }

        ColumnLayout {
            Layout.fillWidth: true
            spacing: 1

            TextLabel {
                Layout.fillWidth: true
                text: header.title
                textFormat: Text.PlainText
                font: Brand.title3
                elide: Text.ElideRight
                Accessible.role: Accessible.Heading
            }

            TextLabel {
                Layout.fillWidth: true
                text: header.subtitle
                textFormat: Text.PlainText
                font: Brand.callout
                color: Brand.secondaryText
                elide: Text.ElideRight
            }
        }

        RowLayout {
            id: slot

            spacing: Brand.small
        }
    }
}
