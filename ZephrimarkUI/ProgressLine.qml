import QtQuick
import QtQuick.Templates as T
import ZephrimarkUI

// How far something is, as a line. It glides forward between two values, and jumps back at once.
T.ProgressBar {
    id: line

    // What progresses, for assistive technology.
    property string name: qsTr("Progress")
    property color color: Brand.accent

    property real shownPosition: 0

    implicitWidth: 200
    implicitHeight: 8

    Accessible.role: Accessible.ProgressBar
    Accessible.name: name
    // A progress bar has no value of its own in the accessibility tree of Qt 6.4.
    Accessible.description: indeterminate ? "" : qsTr("%1 percent").arg(Math.round(100 * position))

    Component.onCompleted: shownPosition = visualPosition
    onVisualPositionChanged: {
        glide.stop()
        if (visualPosition <= shownPosition) {
            shownPosition = visualPosition
            return
        }
        glide.to = visualPosition
        glide.start()
    }

    NumberAnimation {
        id: glide

        target: line
        property: "shownPosition"
        duration: 220
        easing.type: Easing.OutQuad
    }

    background: Rectangle {
        radius: height / 2
        color: Brand.track
    }

    contentItem: Item {
        clip: line.indeterminate

        // Never narrower than its round ends, or they would lose their shape at the start.
        Rectangle {
            readonly property real share: line.indeterminate ? 0.28 : line.shownPosition

            x: line.indeterminate ? sweep.position * (parent.width + width) - width : 0
            visible: share > 0
            width: Math.max(height, share * parent.width)
            height: parent.height
            radius: height / 2
            color: line.color
        }

        NumberAnimation {
            id: sweep

            property real position: 0

            target: sweep
            property: "position"
            running: line.indeterminate && line.visible
            from: 0
            to: 1
            duration: 1400
            loops: Animation.Infinite
        }
    }
}
