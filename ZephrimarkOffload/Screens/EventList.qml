import QtQuick
import QtQuick.Layouts
import ZephrimarkOffload
import ZephrimarkUI

// What happened so far, the latest at the end, which stays in view.
Panel {
    id: list

    required property RowModel events

    ColumnLayout {
        anchors.fill: parent
        spacing: Brand.small

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
            spacing: 5
            boundsBehavior: Flickable.StopAtBounds
            // Until the reader goes back to what was before.
            property bool follows: true
            onMovementEnded: follows = atYEnd
            onCountChanged: if (follows) positionViewAtEnd()
            Accessible.role: Accessible.List
            Accessible.name: qsTr("So far")

            delegate: RowLayout {
                id: line

                required property string time
                required property string text
                required property bool isProblem

                width: view.width // qmllint disable unqualified
                spacing: Brand.medium

                Figures {
                    text: line.time
                    font: Brand.callout
                    color: Brand.tertiaryText
                }

                ElidedLabel {
                    Layout.fillWidth: true
                    text: line.text
                    font: Brand.callout
                    color: line.isProblem ? Brand.orange : Brand.text
                }
            }
        }
    }
}
