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
        Layout.fillWidth: true
        Layout.margins: Brand.huge
        Layout.bottomMargin: Brand.large
        spacing: Brand.medium

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

        GridLayout {
            columns: 2
            columnSpacing: Brand.large
            rowSpacing: Brand.tiny

            FigureLabel { text: qsTr("Files") }
            Figures { text: screen.presenter.files; font: Brand.body; color: Brand.text }
            FigureLabel { text: qsTr("Speed") }
            Figures { text: screen.presenter.speed; font: Brand.body; color: Brand.text }
            FigureLabel { text: qsTr("Left") }
            Figures { text: screen.presenter.remaining; font: Brand.body; color: Brand.text }
            FigureLabel { text: qsTr("Now") }

            ElidedLabel {
                Layout.fillWidth: true
                text: screen.presenter.currentFile
            }
        }
    }

    ColumnLayout {
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
        Layout.fillWidth: true
        Layout.fillHeight: true
        Layout.margins: Brand.huge
        Layout.topMargin: Brand.large
        events: screen.presenter.log
    }

    Divider {}

    RowLayout {
        Layout.fillWidth: true
        Layout.leftMargin: Brand.huge
        Layout.rightMargin: Brand.huge
        Layout.topMargin: Brand.medium
        Layout.bottomMargin: Brand.medium
        spacing: Brand.medium

        TextLabel {
            Layout.fillWidth: true
            text: screen.presenter.isStopping ? qsTr("Stopping after this step…") : qsTr("Keep the card and drives connected until the offload is verified.")
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
