import QtQuick
import QtQuick.Layouts
import ZephrimarkOffload
import ZephrimarkUI

// An offload at work: how far it is, how it goes on every drive, and what happened so far.
ColumnLayout {
    id: screen

    required property RunningPresenter presenter

    signal stopRequested

    spacing: 0

    ColumnLayout {
        id: figures

        Layout.fillWidth: true
        Layout.margins: Brand.huge
        Layout.bottomMargin: Brand.medium
        spacing: 10

        RowLayout {
            spacing: Brand.large

            ColumnLayout {
                Layout.fillWidth: true
                spacing: 2

                ElidedLabel {
                    Layout.fillWidth: true
                    text: screen.presenter.heading
                    font: Brand.title2
                    Accessible.role: Accessible.Heading
                }

                TextLabel {
                    Layout.fillWidth: true
                    text: screen.presenter.phase
                    color: Brand.secondaryText
                    elide: Text.ElideRight
                }
            }

            Figures {
                text: screen.presenter.percent
                font: Brand.display
                color: Brand.accent
            }
        }

        ProgressLine {
            Layout.fillWidth: true
            value: screen.presenter.fraction
            name: qsTr("Progress")
        }

        RowLayout {
            spacing: Brand.small

            // All as wide, whatever they show, so that growing numbers move nothing.
            FigureTile {
                Layout.fillWidth: true
                Layout.preferredWidth: 1
                label: qsTr("Files")
                figure: screen.presenter.files
            }

            FigureTile {
                Layout.fillWidth: true
                Layout.preferredWidth: 1
                label: qsTr("Speed")
                figure: screen.presenter.speed
            }

            FigureTile {
                Layout.fillWidth: true
                Layout.preferredWidth: 1
                label: qsTr("Left")
                figure: screen.presenter.remaining
            }
        }

        RowLayout {
            spacing: Brand.small

            FigureLabel {
                text: qsTr("Now")
                font: Brand.callout
            }

            ElidedLabel {
                Layout.fillWidth: true
                text: screen.presenter.currentFile
                font: Brand.callout
            }
        }
    }

    ColumnLayout {
        id: drives

        Layout.fillWidth: true
        Layout.leftMargin: Brand.huge
        Layout.rightMargin: Brand.huge
        spacing: Brand.small

        Repeater {
            model: screen.presenter.drives

            DriveState { Layout.fillWidth: true }
        }
    }

    EventList {
        id: log

        // With less room than for a line or two it gives way: the drives show the problems too.
        readonly property real room: screen.height - figures.implicitHeight
                                     - drives.implicitHeight - footer.implicitHeight

        visible: events.count > 0 && room > 150

        Layout.fillWidth: true
        Layout.fillHeight: true
        Layout.margins: Brand.huge
        Layout.topMargin: Brand.medium
        events: screen.presenter.log
    }

    Item {
        visible: !log.visible
        Layout.fillHeight: true
    }

    Divider {}

    RowLayout {
        id: footer

        Layout.fillWidth: true
        Layout.leftMargin: Brand.huge
        Layout.rightMargin: Brand.huge
        Layout.topMargin: Brand.medium
        Layout.bottomMargin: Brand.medium
        spacing: Brand.medium

        TextLabel {
            Layout.fillWidth: true
            text: screen.presenter.isStopping
                  ? qsTr("Stopping after this step…")
                  : qsTr("Keep the card and drives connected until the offload is verified.")
            font: Brand.callout
            color: Brand.secondaryText
            wrapMode: Text.Wrap
        }

        PushButton {
            text: qsTr("Stop")
            enabled: !screen.presenter.isStopping
            onClicked: screen.stopRequested()
        }
    }

    Shortcut {
        sequence: "Escape"
        enabled: !screen.presenter.isStopping
        onActivated: screen.stopRequested()
    }
}
