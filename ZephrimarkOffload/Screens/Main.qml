import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import ZephrimarkOffload
import ZephrimarkUI

// The one window: the header, the steps, and the screen of the stage the work is in.
ApplicationWindow {
    id: window

    required property Shell shell
    required property UpdatePresenter updates
    // The window was to be closed during an offload, and the question about it is open.
    property bool wasToClose: false
    // It closes when the offload has stopped, or the card is ejected.
    property bool closesWhenStopped: false

    title: qsTr("Zephrimark Offload")
    minimumWidth: 720
    minimumHeight: 600
    color: Brand.window

    onClosing: event => {
        if (!shell.isRunning && !shell.isEjecting)
            return
        event.accepted = false
        if (!shell.isRunning || shell.running.isStopping) {
            closesWhenStopped = true
            return
        }
        wasToClose = true
        stopQuestion.open()
    }

    Connections {
        target: window.shell

        function onStageChanged() {
            if (window.shell.isRunning)
                return
            stopQuestion.close()
            // An outcome that nobody asked to do without is shown.
            const closes = window.closesWhenStopped && window.shell.stage === "setup"
            window.wasToClose = false
            window.closesWhenStopped = false
            if (closes)
                window.close()
        }

        function onEjectChanged() {
            if (window.shell.isEjecting || !window.closesWhenStopped)
                return
            window.closesWhenStopped = false
            if (window.shell.isEjected)
                window.close()
        }
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        BrandHeader {
            Layout.fillWidth: true
            title: qsTr("Zephrimark Offload")
            subtitle: qsTr("Copy cards to several drives and check every file")

            AppMenu {
                updates: window.updates
                onAboutChosen: about.open()
            }
        }

        Divider {}

        StepBar {
            Layout.fillWidth: true
            steps: window.shell.steps
            current: window.shell.step
            status: window.shell.stepStatus
            busy: window.shell.isRunning
        }

        Divider {}

        Loader {
            id: screen

            Layout.fillWidth: true
            Layout.fillHeight: true
            sourceComponent: {
                switch (window.shell.stage) {
                case "running":
                    return running
                case "done":
                    return done
                case "failed":
                    return failed
                default:
                    return setup
                }
            }
        }
    }

    // qmllint disable unqualified
    Component {
        id: setup

        SetupScreen { presenter: window.shell.setup }
    }

    Component {
        id: running

        RunningScreen {
            presenter: window.shell.running
            onStopRequested: stopQuestion.open()
        }
    }

    Component {
        id: done

        DoneScreen {
            presenter: window.shell.done
            showInFileBrowser: window.shell.showInFileBrowser
        }
    }

    Component {
        id: failed

        FailedScreen {
            message: window.shell.failedMessage
            onBack: window.shell.back()
        }
    }
    // qmllint enable unqualified

    DropZones {
        anchors.fill: parent
        presenter: window.shell.setup
        enabled: window.shell.stage === "setup"
    }

    ConfirmDialog {
        id: stopQuestion

        objectName: "stopQuestion"
        title: qsTr("Stop the offload?")
        message: qsTr("Files already verified stay on the drives. Start again with the same card "
                      + "and drives to pick up where it left off.")
        confirmText: qsTr("Stop")
        cancelText: qsTr("Keep Going")
        onAccepted: {
            window.closesWhenStopped = window.wasToClose
            window.shell.running.stop()
        }
        onRejected: window.wasToClose = false
    }

    AboutDialog {
        id: about

        objectName: "about"
        version: window.shell.version
        components: window.shell.components
    }

    MessageDialog {
        id: updateResult

        title: window.updates.title
        message: window.updates.message
        buttonText: window.updates.hasDownload ? qsTr("Not Now") : qsTr("OK")

        PushButton {
            visible: window.updates.hasDownload
            text: qsTr("Open Download Page")
            prominent: true
            onClicked: {
                window.updates.openDownloadPage()
                updateResult.close()
            }
        }
    }

    Connections {
        target: window.updates

        function onFinished() {
            updateResult.open()
        }
    }

    Shortcut {
        // Not the standard key for it, which exists on some desktops only.
        sequence: "Ctrl+Q"
        onActivated: window.close()
    }
}
