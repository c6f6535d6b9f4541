import QtQuick
import QtQuick.Layouts
import ZephrimarkOffload
import ZephrimarkUI

// How an offload ended, and what can be done now.
ColumnLayout {
    id: screen

    required property DonePresenter presenter
    required property string showInFileBrowser

    spacing: 0

    ScrollArea {
        Layout.fillWidth: true
        Layout.fillHeight: true
        inset: Brand.huge

        ColumnLayout {
            width: parent.width
            spacing: Brand.large

            RowLayout {
                spacing: Brand.large

                Icon {
                    name: screen.presenter.isVerified ? "checkmark.seal.fill" : "exclamationmark.triangle.fill"
                    color: screen.presenter.isVerified ? Brand.green : Brand.orange
                    size: 38
                }

                ColumnLayout {
                    Layout.fillWidth: true
                    spacing: 2

                    TextLabel {
                        Layout.fillWidth: true
                        text: screen.presenter.title
                        font: Brand.title2
                        wrapMode: Text.Wrap
                        Accessible.role: Accessible.Heading
                    }

                    TextLabel {
                        Layout.fillWidth: true
                        text: screen.presenter.sentence
                        textFormat: Text.PlainText
                        color: Brand.secondaryText
                        wrapMode: Text.Wrap
                    }
                }
            }

            GridLayout {
                columns: 2
                columnSpacing: Brand.large
                rowSpacing: Brand.tiny

                FigureLabel { text: qsTr("Files") }
                TextLabel { text: screen.presenter.files }
                FigureLabel { text: qsTr("Took") }
                TextLabel { text: screen.presenter.took }
                FigureLabel { text: qsTr("Checksum") }
                TextLabel { text: screen.presenter.checksum }
            }

            ColumnLayout {
                Layout.fillWidth: true
                spacing: Brand.small

                Repeater {
                    model: screen.presenter.drives

                    OutcomeRow {
                        required property int index

                        Layout.fillWidth: true
                        buttonText: screen.showInFileBrowser
                        onRevealed: screen.presenter.revealDrive(index)
                    }
                }

                OutcomeRow {
                    visible: screen.presenter.cardImage !== ""
                    Layout.fillWidth: true
                    name: qsTr("Card image")
                    detail: screen.presenter.cardImage
                    place: ""
                    isVerified: screen.presenter.isCardImageVerified
                    buttonText: isVerified ? screen.showInFileBrowser : ""
                    onRevealed: screen.presenter.revealCardImage()
                }
            }

            LineList {
                Layout.fillWidth: true
                title: qsTr("Could not be read from the card")
                note: qsTr("There may be more on the card than was copied. Don't erase it; try another reader, or look for the files with a card image.")
                lines: screen.presenter.unreadable
            }

            LineList {
                Layout.fillWidth: true
                title: qsTr("Not verified everywhere")
                lines: screen.presenter.failedFiles
            }
        }
    }

    TextLabel {
        visible: text !== ""
        Layout.fillWidth: true
        Layout.leftMargin: Brand.huge
        Layout.rightMargin: Brand.huge
        Layout.bottomMargin: Brand.small
        text: screen.presenter.ejectMessage
        font: Brand.callout
        color: Brand.secondaryText
        wrapMode: Text.Wrap
    }

    Divider {}

    RowLayout {
        Layout.fillWidth: true
        Layout.leftMargin: Brand.huge
        Layout.rightMargin: Brand.huge
        Layout.topMargin: Brand.medium
        Layout.bottomMargin: Brand.medium
        spacing: Brand.small

        PushButton {
            visible: screen.presenter.canOpenReport
            text: qsTr("Open Report")
            symbol: "doc.text"
            onClicked: screen.presenter.openReport()
        }

        PushButton {
            visible: screen.presenter.canEject
            enabled: !screen.presenter.isEjecting
            text: qsTr("Eject Card")
            symbol: "eject"
            onClicked: screen.presenter.eject()
        }

        PushButton {
            visible: screen.presenter.canTryAgain
            text: qsTr("Try Again")
            symbol: "arrow.clockwise"
            tip: qsTr("Runs the offload again. Files already verified are checked, not copied again.")
            onClicked: screen.presenter.tryAgain()
        }

        Item { Layout.fillWidth: true }

        PushButton {
            text: qsTr("New Offload")
            prominent: true
            defaultAction: true
            onClicked: screen.presenter.newOffload()
        }
    }
}
