import QtQuick
import QtQuick.Templates as T
import ZephrimarkOffload
import ZephrimarkUI

// The application's menu, behind a button in the header. F10 opens it.
PushButton {
    id: button

    required property UpdatePresenter updates

    signal aboutChosen

    symbol: "menu"
    borderless: true
    tip: qsTr("Menu")
    Accessible.role: Accessible.ButtonMenu
    onClicked: menu.open()

    Shortcut {
        sequence: "F10"
        onActivated: menu.open()
    }

    T.Menu {
        id: menu

        x: button.width - width
        y: button.height + 4
        width: 250
        implicitHeight: contentItem.implicitHeight + topPadding + bottomPadding
        padding: 5
        margins: 8
        focus: true

        contentItem: ListView {
            implicitHeight: contentHeight
            model: menu.contentModel
            currentIndex: menu.currentIndex
            interactive: false
            keyNavigationEnabled: true
        }

        background: Raised {}

        MenuEntry {
            text: qsTr("About Zephrimark Offload")
            onTriggered: button.aboutChosen()
        }

        MenuEntry {
            text: qsTr("Check for Updates…")
            enabled: button.updates.canCheckForUpdates
            onTriggered: button.updates.checkForUpdates()
        }

        MenuEntry {
            text: qsTr("Quit")
            onTriggered: button.Window.window.close()
        }
    }
}
