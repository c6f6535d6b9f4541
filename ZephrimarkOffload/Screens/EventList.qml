import QtQuick
import QtQuick.Layouts
import ZephrimarkOffload
import ZephrimarkUI

// What happened so far, the latest at the end, which stays in view.
ColumnLayout {
    id: list

    required property RowModel events

    spacing: Brand.tiny
    visible: events.count > 0

    TextLabel {
        text: qsTr("So far")
        font: Brand.calloutStrong
        color: Brand.secondaryText
        Accessible.role: Accessible.Heading
    }

    ListView {
        id: view

        Layout.fillWidth: true
        Layout.fillHeight: true
        clip: true
        model: list.events
        spacing: 3
        boundsBehavior: Flickable.StopAtBounds
        onCountChanged: positionViewAtEnd()
        Accessible.role: Accessible.List
        Accessible.name: qsTr("So far")

        delegate: RowLayout {
            id: line

            required property string time
            required property string text
            required property bool isProblem

            width: view.width
            spacing: Brand.small

            Figures {
                text: line.time
                font: Brand.caption
                color: Brand.tertiaryText
            }

            ElidedLabel {
                Layout.fillWidth: true
                text: line.text
                font: Brand.caption
                color: line.isProblem ? Brand.orange : Brand.secondaryText
            }
        }
    }
}
