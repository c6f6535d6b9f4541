import QtQuick
import QtQuick.Templates as T
import ZephrimarkUI

// One line to type into. Return ends the entry: `accepted`, as every text field has it.
T.TextField {
    id: entry

    // What is entered here, for assistive technology, such as the text before it.
    property string name: placeholderText
    property bool mono: false
    // Marks what was typed as wrong; say why beside it.
    property bool wrong: false
    // Shown under the pointer, and read out as the description.
    property string tip

    font: mono ? Brand.mono : Brand.callout
    opacity: enabled ? 1 : 0.45
    color: Brand.text
    placeholderTextColor: Brand.tertiaryText
    selectionColor: Brand.accentFill
    selectedTextColor: Brand.accentInk
    selectByMouse: true
    hoverEnabled: true
    implicitWidth: 200
    implicitHeight: Brand.controlHeight
    leftPadding: 10
    rightPadding: 10
    topPadding: 0
    bottomPadding: 0
    verticalAlignment: TextInput.AlignVCenter

    Accessible.name: name
    Accessible.description: tip

    Keys.onShortcutOverride: event => event.accepted = event.key === Qt.Key_Return
                                                       || event.key === Qt.Key_Enter

    Text {
        x: entry.leftPadding
        width: entry.width - entry.leftPadding - entry.rightPadding
        height: entry.height
        visible: entry.length === 0 && entry.preeditText === ""
        text: entry.placeholderText
        textFormat: Text.PlainText
        font: entry.font
        color: entry.placeholderTextColor
        elide: Text.ElideRight
        verticalAlignment: Text.AlignVCenter
    }

    background: Rectangle {
        radius: Brand.controlRadius
        color: Brand.field
        border.width: 1
        border.color: entry.wrong ? Brand.red
                      : entry.hovered ? Brand.tertiaryText : Brand.controlBorder

        FocusRing {
            shown: entry.activeFocus
            gap: -1
            border.color: entry.wrong ? Brand.red : Brand.focusRing
        }
    }

    HoverTip {
        text: entry.tip
        shown: entry.hovered && !entry.activeFocus
    }
}
