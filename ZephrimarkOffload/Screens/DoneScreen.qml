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

    Timer {
        id: justShown

        interval: 500
        running: true
    }

    ScrollArea {
        id: outcome

        Layout.fillWidth: true
        Layout.fillHeight: true
        inset: Brand.huge

        // No layout, since layouts in layouts come to rest only after several rounds.
        Column {
            width: parent.width
            // A short outcome stands a little above the middle.
            y: Math.max(0, (outcome.height - 2 * outcome.inset - height) * 0.35)
            spacing: Brand.large

            Icon {
                anchors.horizontalCenter: parent.horizontalCenter
                name: screen.presenter.isGood ? "checkmark.seal.fill"
                                              : "exclamationmark.triangle.fill"
                color: screen.presenter.isGood ? Brand.green : Brand.orange
                size: 38
            }

            Column {
                width: parent.width
                spacing: Brand.tiny

                TextLabel {
                    width: parent.width
                    text: screen.presenter.title
                    font: Brand.title2
                    horizontalAlignment: Text.AlignHCenter
                    wrapMode: Text.Wrap
                    Accessible.role: Accessible.Heading
                }

                TextLabel {
                    width: parent.width
                    text: screen.presenter.sentence
                    textFormat: Text.PlainText
                    color: Brand.secondaryText
                    horizontalAlignment: Text.AlignHCenter
                    wrapMode: Text.Wrap
                }
            }

            RowLayout {
                width: parent.width
                spacing: Brand.small

                FigureTile {
                    Layout.fillWidth: true
                    label: qsTr("Files")
                    figure: screen.presenter.files
                }

                FigureTile {
                    Layout.fillWidth: true
                    label: qsTr("Took")
                    figure: screen.presenter.took
                }

                FigureTile {
                    Layout.fillWidth: true
                    label: qsTr("Checksum")
                    figure: screen.presenter.checksum
                }
            }

            ColumnLayout {
                width: parent.width
                spacing: Brand.small

                Repeater {
                    model: screen.presenter.drives

                    OutcomeRow {
                        required property int index

                        Layout.fillWidth: true
                        buttonText: screen.showInFileBrowser // qmllint disable unqualified
                        // qmllint disable unqualified
                        onRevealed: screen.presenter.revealDrive(index)
                        // qmllint enable unqualified
                    }
                }

                OutcomeRow {
                    visible: screen.presenter.cardImage !== ""
                    Layout.fillWidth: true
                    name: qsTr("Card image")
                    detail: screen.presenter.cardImage
                    place: ""
                    isVerified: screen.presenter.isCardImageWhole
                    buttonText: screen.presenter.isCardImageVerified ? screen.showInFileBrowser : ""
                    onRevealed: screen.presenter.revealCardImage()
                }
            }

            TextLabel {
                visible: text !== ""
                width: parent.width
                text: screen.presenter.missingProof
                font: Brand.callout
                color: Brand.orange
                wrapMode: Text.Wrap
            }

            LineList {
                width: parent.width
                title: qsTr("Could not be read from the card")
                note: qsTr("There may be more on the card than was copied. Don't erase it; try "
                           + "another reader, or look for the files with a card image.")
                lines: screen.presenter.unreadable
            }

            LineList {
                width: parent.width
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
            tip: qsTr("Runs the offload again. Files already verified are checked, not copied "
                      + "again.")
            onClicked: screen.presenter.tryAgain()
        }

        Item { Layout.fillWidth: true }

        PushButton {
            text: qsTr("New Offload")
            prominent: true
            // A Return that was meant for what stood here before must not dismiss this unseen.
            defaultAction: !justShown.running
            onClicked: screen.presenter.newOffload()
        }
    }
}
