import QtQuick
import QtQuick.Layouts
import QtQuick.Window
import ZephrimarkUI

// Every control in its states, to look at.
Window {
    id: window

    property string look
    property bool confirming: false
    property bool telling: false

    width: 820
    height: 840
    visible: true
    color: Brand.window
    title: "Gallery"

    onLookChanged: Brand.dark = look === "dark"
    onConfirmingChanged: confirm.visible = confirming
    onTellingChanged: tell.visible = telling

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        BrandHeader {
            Layout.fillWidth: true
            title: "Zephrimark Offload"
            subtitle: "Copy cards to several drives and check every file"

            PushButton { symbol: "arrow.clockwise"; borderless: true; tip: "Look again" }
            PushButton { symbol: "menu"; borderless: true; tip: "Menu" }
        }
        Divider {}
        StepBar {
            objectName: "steps"
            Layout.fillWidth: true
            steps: ["Card", "Drives", "Copy and verify", "Done"]
            current: 2
            status: "Ready. Check the folder name, then press Start Offload."
        }
        Divider {}
        ScrollArea {
            objectName: "scroll"
            Layout.fillWidth: true
            Layout.fillHeight: true

            GalleryControls { width: parent.width }
        }
        Divider {}
        RowLayout {
            Layout.margins: Brand.margin
            Layout.topMargin: Brand.medium
            Layout.bottomMargin: Brand.medium

            TextLabel { Layout.fillWidth: true; text: "64.2 GB to 2 drives" }
            PushButton { text: "Stop"; destructive: true; onClicked: window.confirming = true }
            PushButton {
                objectName: "start"
                text: "Start Offload"
                symbol: "arrow.down.doc"
                prominent: true
                large: true
                defaultAction: true
                onClicked: window.telling = true
            }
        }
    }

    ConfirmDialog {
        id: confirm

        objectName: "confirm"
        symbol: "exclamationmark.triangle.fill"
        title: "Stop the offload?"
        message: "Files that are already verified stay on the drives. "
                  + "The rest of the card is not copied."
        confirmText: "Stop Offload"
        cancelText: "Keep Copying"
        onClosed: window.confirming = false
    }

    MessageDialog {
        id: tell

        objectName: "tell"
        title: "The card could not be ejected"
        message: "Another program is still using it."
        onClosed: window.telling = false
    }
}
