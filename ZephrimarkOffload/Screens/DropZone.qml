import QtQuick
import QtQuick.Layouts
import ZephrimarkUI

// One of the halves of the window that a folder can be dropped on.
Rectangle {
    id: zone

    property string symbol
    property string text
    property bool chosen: false

    radius: Brand.radius
    color: Brand.mixed(Brand.panel, Brand.accent, chosen ? 0.18 : 0.04)
    border.width: 2
    border.color: chosen ? Brand.accent : Brand.border
    opacity: 0.97

    ColumnLayout {
        anchors.centerIn: parent
        spacing: Brand.medium

        Icon {
            Layout.alignment: Qt.AlignHCenter
            name: zone.symbol
            size: 44
            color: zone.chosen ? Brand.accent : Brand.secondaryText
        }

        Text {
            text: zone.text
            font: Brand.title3
            color: Brand.text
        }
    }
}
