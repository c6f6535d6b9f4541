import QtQuick
import ZephrimarkUI

// What this program is.
MessageDialog {
    property string version

    title: qsTr("Zephrimark Offload %1").arg(version)
    symbol: "appicon"
    message: qsTr("Copies cards to several drives at once, reads every copy back and compares it with the card.\n\nMade with Qt, OpenSSL, ICU and expat, and with the typeface Inter.")
}
