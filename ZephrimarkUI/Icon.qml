import QtQuick
import QtQuick.Window
import ZephrimarkUI

// One symbol, drawn for the pixels of the screen it is on. Decoration to assistive technology: what
// it means belongs into the name of what it stands in.
Item {
    id: icon

    // A file of icons/ without its ending. With none, nothing is shown.
    property string name
    property color color: Brand.secondaryText
    property real size: Brand.symbol

    implicitWidth: size
    implicitHeight: size

    Image {
        readonly property int pixels: Math.round(icon.size * Screen.devicePixelRatio)

        anchors.centerIn: parent
        width: pixels / Screen.devicePixelRatio
        height: width
        sourceSize.width: pixels
        sourceSize.height: pixels
        source: icon.name === ""
                ? "" : "image://icon/" + icon.name + "/" + String(icon.color).slice(1)
    }
}
