import QtQuick
import QtQuick.Layouts
import ZephrimarkUI

// A figure below what it is about.
Panel {
    id: tile

    required property string label
    required property string figure

    topPadding: 8
    bottomPadding: 9

    ColumnLayout {
        anchors.fill: parent
        spacing: 2

        FigureLabel {
            text: tile.label
            font: Brand.caption
        }

        Figures {
            text: tile.figure
            font: Brand.bodyStrong
        }
    }
}
