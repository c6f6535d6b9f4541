import QtQuick
import QtQuick.Layouts
import ZephrimarkOffload
import ZephrimarkUI

// The chosen destinations, and the drives that can be added.
ColumnLayout {
    id: section

    required property SetupPresenter presenter

    signal folderWanted

    spacing: Brand.small

    SectionTitle {
        Layout.fillWidth: true
        symbol: "externaldrive"
        title: qsTr("Copy to")
        detail: qsTr("Up to 3 drives, written at the same time")
        complete: section.presenter.destinations.count > 0
    }

    Repeater {
        model: section.presenter.destinations

        DestinationRow {
            required property int index

            Layout.fillWidth: true
            onRemoved: byKeyboard => {
                section.presenter.removeDestination(index)
                if (byKeyboard)
                    chooseButton.forceActiveFocus(Qt.TabFocusReason)
            }
        }
    }

    Repeater {
        model: section.presenter.suggestedDrives

        SuggestedDrive {
            required property int index

            Layout.fillWidth: true
            onClicked: {
                const byKeyboard = visualFocus
                section.presenter.addSuggested(index)
                if (byKeyboard && chooseButton.visible)
                    chooseButton.forceActiveFocus(Qt.TabFocusReason)
            }
        }
    }

    TextLabel {
        visible: text !== ""
        text: section.presenter.drivesHint
        font: Brand.callout
        color: Brand.secondaryText
    }

    PushButton {
        id: chooseButton

        visible: section.presenter.canAdd
        text: qsTr("Choose Folder…")
        symbol: "folder"
        small: true
        onClicked: section.folderWanted()
    }

    RowLayout {
        visible: section.presenter.internalWarning !== ""
        spacing: Brand.small

        Icon {
            Layout.alignment: Qt.AlignTop
            name: "exclamationmark.triangle"
            color: Brand.orange
            size: 16
        }

        TextLabel {
            Layout.fillWidth: true
            text: section.presenter.internalWarning
            font: Brand.caption
            color: Brand.orange
            wrapMode: Text.Wrap
        }
    }
}
