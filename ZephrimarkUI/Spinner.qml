import QtQuick
import QtQuick.Templates as T
import ZephrimarkUI

// A small sign that something is going on. It turns in steps, one spoke at a time, which looks calm
// and costs little.
T.BusyIndicator {
    id: spinner

    property real size: 14
    property color color: Brand.secondaryText

    implicitWidth: size
    implicitHeight: size
    visible: running

    Accessible.role: Accessible.Indicator
    Accessible.name: qsTr("Busy")

    contentItem: Icon {
        id: spokes

        name: "spinner"
        size: spinner.size
        color: spinner.color

        Timer {
            interval: 90
            repeat: true
            running: spinner.running && spinner.visible
            onTriggered: spokes.rotation = (spokes.rotation + 45) % 360
        }
    }
}
