import QtQuick
import ZephrimarkUI

// The background of what floats above the window: a panel with a soft shadow, which is a stack of
// faint outlines because not every renderer has blur.
Item {
    id: raised

    property real radius: Brand.radius

    Repeater {
        model: 10

        Rectangle {
            required property int index

            anchors.fill: parent
            anchors.margins: -1 - 1.2 * index
            anchors.topMargin: 2 - 0.6 * index
            anchors.bottomMargin: -3 - 1.8 * index
            radius: raised.radius + 1 + 1.2 * index // qmllint disable unqualified
            color: Brand.shadow
        }
    }

    Rectangle {
        anchors.fill: parent
        radius: raised.radius
        color: Brand.raised
        border.color: Brand.dark ? Brand.controlBorder : Brand.border
    }
}
