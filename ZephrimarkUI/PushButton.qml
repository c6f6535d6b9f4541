import QtQuick
import QtQuick.Templates as T
import ZephrimarkUI

// A button with a text, a symbol or both. Space, Return and Enter press it.
T.Button {
    id: button

    // The one action of the screen, filled with the accent.
    property bool prominent: false
    // An action that ends or destroys something.
    property bool destructive: false
    property bool small: false
    property bool large: false
    property bool borderless: false
    // The name of an Icon before the text.
    property string symbol
    // Shown under the pointer, and read out as the description.
    property string tip
    // Return presses it wherever the keyboard is, unless the control there takes Return itself.
    property bool defaultAction: false

    readonly property bool filled: prominent && !borderless
    readonly property color ink: {
        if (filled)
            return Brand.accentInk
        if (destructive)
            return Brand.red
        return borderless ? Brand.accent : Brand.text
    }
    readonly property color fill: {
        if (borderless)
            return "transparent"
        if (!prominent)
            return Brand.field
        return destructive ? Brand.redFill : Brand.accentFill
    }

    font: large ? Brand.bodyStrong : filled ? Brand.calloutStrong : small ? Brand.caption
                                                                          : Brand.callout
    opacity: enabled ? 1 : 0.45
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    implicitHeight: large ? Brand.largeControlHeight : small ? Brand.smallControlHeight
                                                             : Brand.controlHeight
    implicitWidth: Math.max(implicitHeight, contentItem.implicitWidth + leftPadding + rightPadding)
    topPadding: 0
    bottomPadding: 0
    leftPadding: text === "" ? 4 : borderless ? 6 : large ? 18 : small ? 9 : 12
    rightPadding: leftPadding

    Accessible.name: text !== "" ? text : tip
    Accessible.description: text !== "" ? tip : ""
    Accessible.onPressAction: if (button.enabled) button.clicked()

    Keys.onShortcutOverride: event => event.accepted = event.key === Qt.Key_Return
                                                       || event.key === Qt.Key_Enter
    Keys.onReturnPressed: event => pressedByKey(event)
    Keys.onEnterPressed: event => pressedByKey(event)

    // Hidden, it would keep the keyboard and take Return for itself.
    onVisibleChanged: if (!visible) focus = false

    // A held key repeats; one press is one press.
    function pressedByKey(event: var) {
        if (!event.isAutoRepeat)
            clicked()
    }

    contentItem: Item {
        implicitWidth: row.implicitWidth
        implicitHeight: row.implicitHeight

        Row {
            id: row

            anchors.centerIn: parent
            spacing: button.small ? 5 : 7

            Icon {
                visible: button.symbol !== ""
                anchors.verticalCenter: parent.verticalCenter
                name: button.symbol
                color: button.ink
                size: button.large ? 18 : button.small ? 14 : 16
            }

            Text {
                visible: button.text !== ""
                anchors.verticalCenter: parent.verticalCenter
                text: button.text
                textFormat: Text.PlainText
                font: button.font
                color: button.ink
            }
        }
    }

    background: Rectangle {
        radius: button.large ? Brand.radius : Brand.controlRadius
        color: button.fill
        border.width: button.borderless || button.filled ? 0 : 1
        border.color: Brand.controlBorder

        Rectangle {
            anchors.fill: parent
            radius: parent.radius
            color: {
                if (button.down)
                    return button.filled ? Brand.filledPressed : Brand.pressed
                if (button.hovered)
                    return button.filled ? Brand.filledHover : Brand.hover
                return "transparent"
            }
        }

        FocusRing {
            shown: button.visualFocus
            inner: parent.radius
            gap: button.borderless ? 0 : 2
        }
    }

    Shortcut {
        sequences: ["Return", "Enter"]
        enabled: button.defaultAction && button.enabled && button.visible
        autoRepeat: false
        onActivated: button.clicked()
    }

    HoverTip {
        text: button.tip
        shown: button.hovered && !button.down
    }
}
