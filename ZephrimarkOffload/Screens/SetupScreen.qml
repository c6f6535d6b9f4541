import QtQuick
import QtQuick.Dialogs
import QtQuick.Layouts
import ZephrimarkOffload
import ZephrimarkUI

// Where card, drives, folder and checks are chosen, and the offload is started.
ColumnLayout {
    id: screen

    required property SetupPresenter presenter

    spacing: 0

    Component.onCompleted: presenter.reopen()

    ScrollArea {
        Layout.fillWidth: true
        Layout.fillHeight: true
        inset: Brand.huge

        // No layout, since layouts in layouts come to rest only after several rounds.
        Column {
            width: parent.width
            spacing: 14

            CardSection {
                width: parent.width
                presenter: screen.presenter
                onFolderWanted: sourceDialog.open()
            }

            DestinationSection {
                width: parent.width
                presenter: screen.presenter
                onFolderWanted: destinationDialog.open()
            }

            FolderSection {
                width: parent.width
                presenter: screen.presenter
            }

            ChecksSection {
                width: parent.width
                presenter: screen.presenter
            }
        }
    }

    Divider {}

    RowLayout {
        Layout.fillWidth: true
        Layout.leftMargin: Brand.huge
        Layout.rightMargin: Brand.huge
        Layout.topMargin: Brand.medium
        Layout.bottomMargin: Brand.medium
        spacing: Brand.small

        Icon {
            visible: screen.presenter.blocker !== ""
            name: "info.circle"
        }

        TextLabel {
            Layout.fillWidth: true
            text: screen.presenter.blocker !== "" ? screen.presenter.blocker
                                                  : screen.presenter.startSummary
            textFormat: Text.PlainText
            font: Brand.callout
            color: screen.presenter.blocker !== "" ? Brand.secondaryText : Brand.text
            wrapMode: Text.Wrap
            maximumLineCount: 2
            elide: Text.ElideRight
        }

        PushButton {
            text: qsTr("Start Offload")
            symbol: "arrow.down.doc"
            prominent: true
            large: true
            defaultAction: true
            enabled: screen.presenter.blocker === ""
            onClicked: screen.presenter.start()
        }
    }

    FolderDialog {
        id: sourceDialog

        title: qsTr("Choose a card or folder to offload. It's only read, never changed.")
        acceptLabel: qsTr("Offload This")
        onAccepted: screen.presenter.chooseSource(selectedFolder)
    }

    FolderDialog {
        id: destinationDialog

        title: qsTr("Choose a drive or folder to copy to.")
        acceptLabel: qsTr("Copy Here")
        onAccepted: screen.presenter.addDestination(selectedFolder)
    }
}
