import QtQuick
import ZephrimarkUI

// Asks before something is done: `accepted` or `rejected`. Escape and Return cancel, for the answer
// that cannot be taken back should need a deliberate press.
DialogFrame {
    id: dialog

    property string confirmText: qsTr("OK")
    property string cancelText: qsTr("Cancel")
    property bool destructive: true

    onOpened: cancel.forceActiveFocus(Qt.TabFocusReason)

    PushButton {
        id: cancel

        text: dialog.cancelText
        onClicked: dialog.reject()
    }

    PushButton {
        text: dialog.confirmText
        prominent: true
        destructive: dialog.destructive
        onClicked: dialog.accept()
    }
}
