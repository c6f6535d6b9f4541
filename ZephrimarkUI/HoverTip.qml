import QtQuick
import QtQuick.Templates as T
import ZephrimarkUI

// What a pause of the pointer explains about the item it is declared in.
T.ToolTip {
    id: tip

    // Whether the pointer rests on the item. The tip comes after a moment.
    property bool shown: false

    visible: shown && text !== ""
    delay: 600
    x: parent ? Math.round((parent.width - width) / 2) : 0
    y: parent ? parent.height + 6 : 0
    implicitWidth: Math.min(contentItem.implicitWidth + leftPadding + rightPadding, 440)
    implicitHeight: contentItem.implicitHeight + topPadding + bottomPadding
    margins: 8
    topPadding: 5
    bottomPadding: 6
    leftPadding: 9
    rightPadding: 9
    closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutsideParent

    contentItem: TextLabel {
        text: tip.text
        textFormat: Text.PlainText
        font: Brand.caption
        color: Brand.text
        wrapMode: Text.Wrap
    }

    background: Rectangle {
        radius: Brand.controlRadius
        color: Brand.raised
        border.color: Brand.controlBorder
    }
}
