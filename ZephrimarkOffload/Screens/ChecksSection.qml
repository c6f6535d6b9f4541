import QtQuick
import QtQuick.Layouts
import ZephrimarkOffload
import ZephrimarkUI

// How the copies are checked, and what happens with the card.
ColumnLayout {
    id: section

    required property SetupPresenter presenter

    spacing: Brand.small

    SectionTitle {
        Layout.fillWidth: true
        symbol: "checkmark.shield"
        title: qsTr("Checks")
    }

    TextLabel {
        Layout.fillWidth: true
        text: qsTr("Every copy is read back from the drive and compared with the card. Checksums "
                   + "are saved in each folder as an ASC MHL file.")
        font: Brand.caption
        color: Brand.secondaryText
        wrapMode: Text.Wrap
    }

    RowLayout {
        spacing: Brand.small

        TextLabel {
            id: checksumLabel

            text: qsTr("Checksum")
            font: Brand.callout
        }

        Picker {
            model: section.presenter.algorithmNames
            currentIndex: section.presenter.algorithmIndex
            name: checksumLabel.text
            onActivated: index => {
                section.presenter.algorithmIndex = index
                currentIndex = Qt.binding(() => section.presenter.algorithmIndex)
            }
        }
    }

    Toggle {
        Layout.fillWidth: true
        text: qsTr("Read the card twice")
        caption: qsTr("Reads every file from the card a second time and compares, to catch a "
                      + "failing card or reader.")
        checked: section.presenter.verifySource
        onToggled: section.presenter.verifySource = checked
    }

    Toggle {
        Layout.fillWidth: true
        text: qsTr("Eject the card when verified")
        checked: section.presenter.ejectWhenDone
        onToggled: section.presenter.ejectWhenDone = checked
    }

    Toggle {
        Layout.fillWidth: true
        enabled: section.presenter.canSaveCardImage
        text: qsTr("Save a card image for Kestrine")
        trailing: section.presenter.cardImageDetail
        caption: section.presenter.cardImageCaption
        checked: section.presenter.saveCardImage
        onToggled: section.presenter.saveCardImage = checked
    }
}
