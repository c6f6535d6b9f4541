import QtQuick
import QtQuick.Layouts
import ZephrimarkUI

// An offload that could not start, and why.
Item {
    id: screen

    required property string message

    signal back

    Timer {
        id: justShown

        interval: 500
        running: true
    }

    ColumnLayout {
        anchors.centerIn: parent
        width: Math.min(460, parent.width - 2 * Brand.huge)
        spacing: Brand.medium

        Icon {
            Layout.alignment: Qt.AlignHCenter
            name: "exclamationmark.triangle.fill"
            size: 40
            color: Brand.orange
        }

        TextLabel {
            Layout.alignment: Qt.AlignHCenter
            text: qsTr("The offload couldn't start")
            font: Brand.title2
            Accessible.role: Accessible.Heading
        }

        TextLabel {
            Layout.fillWidth: true
            text: screen.message
            textFormat: Text.PlainText
            color: Brand.secondaryText
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
        }

        PushButton {
            Layout.alignment: Qt.AlignHCenter
            text: qsTr("Back")
            prominent: true
            // A Return that was meant for what stood here before must not dismiss this unseen.
            defaultAction: !justShown.running
            onClicked: screen.back()
        }
    }
}
