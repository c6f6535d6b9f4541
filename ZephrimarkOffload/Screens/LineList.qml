import QtQuick
import QtQuick.Layouts
import ZephrimarkUI

// A heading and the lines below it; without lines nothing.
ColumnLayout {
    id: list

    required property string title
    required property var lines
    property string note

    visible: lines.length > 0
    spacing: 3

    TextLabel {
        text: list.title
        font: Brand.headline
        Accessible.role: Accessible.Heading
    }

    TextLabel {
        visible: text !== ""
        Layout.fillWidth: true
        Layout.bottomMargin: Brand.tiny
        text: list.note
        font: Brand.callout
        color: Brand.orange
        wrapMode: Text.Wrap
    }

    Repeater {
        model: list.lines

        ElidedLabel {
            required property string modelData

            Layout.fillWidth: true
            text: modelData
            font: Brand.caption
            color: Brand.secondaryText
        }
    }
}
