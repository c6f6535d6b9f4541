import QtQuick
import ZephrimarkUI

// Tells something. Return, Escape and its button close it: `accepted` or `rejected`.
DialogFrame {
    id: dialog

    property string buttonText: qsTr("OK")

    onOpened: ok.forceActiveFocus(Qt.OtherFocusReason)

    PushButton {
        id: ok

        text: dialog.buttonText
        prominent: true
        onClicked: dialog.accept()
    }
}
