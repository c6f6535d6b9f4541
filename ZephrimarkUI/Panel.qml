import QtQuick
import QtQuick.Templates as T
import ZephrimarkUI

// A rounded area with a border. With a `tone` it is tinted, for a warning or an error.
T.Pane {
    id: panel

    property color tone: "transparent"
    property real radius: Brand.radius

    readonly property bool toned: tone.a > 0

    padding: Brand.medium
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding

    background: Rectangle {
        radius: panel.radius
        color: panel.toned ? Brand.mixed(Brand.panel, panel.tone, 0.08) : Brand.panel
        border.color: panel.toned ? Brand.mixed(Brand.panel, panel.tone, 0.45) : Brand.border
    }
}
