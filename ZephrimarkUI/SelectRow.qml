import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import ZephrimarkUI

// One of several, as a whole row: the rows beside it in the same parent lose their choice when it
// is chosen. `text` names it to assistive technology; what is declared inside is shown in a row.
T.RadioButton {
    id: row

    default property alias content: slot.data
    // Read out after the name.
    property string description

    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    opacity: enabled ? 1 : 0.45
    implicitWidth: contentItem.implicitWidth + leftPadding + rightPadding
    implicitHeight: Math.max(44, contentItem.implicitHeight + topPadding + bottomPadding)
    topPadding: 6
    bottomPadding: 6
    leftPadding: 12
    rightPadding: 12

    Accessible.name: text
    Accessible.description: description
    Accessible.onPressAction: row.choose()
    Accessible.onToggleAction: row.choose()

    Keys.onShortcutOverride: event => event.accepted = event.key === Qt.Key_Return
                                                       || event.key === Qt.Key_Enter
    Keys.onReturnPressed: event => { if (!event.isAutoRepeat) choose() }
    Keys.onEnterPressed: event => { if (!event.isAutoRepeat) choose() }
    Keys.onUpPressed: event => event.accepted = focusNeighbour(-1)
    Keys.onDownPressed: event => event.accepted = focusNeighbour(1)

    // As a click would do it.
    function choose() {
        if (!enabled)
            return
        if (!checked) {
            toggle()
            toggled()
        }
        clicked()
    }

    // Moves the keyboard to the row before or behind, without choosing it.
    function focusNeighbour(step: int): bool {
        const rows = Array.from(parent.children).filter(
            item => item instanceof SelectRow && item.visible && item.enabled)
        const next = rows[rows.indexOf(row) + step]
        if (next === undefined)
            return false
        next.forceActiveFocus(Qt.TabFocusReason)
        return true
    }

    indicator: Icon {
        x: row.leftPadding
        y: Math.round((row.height - height) / 2)
        name: row.checked ? "checkmark.circle.fill" : "circle"
        color: row.checked ? Brand.accent : row.hovered ? Brand.secondaryText : Brand.tertiaryText
        size: Brand.symbol
    }

    contentItem: RowLayout {
        id: slot

        spacing: 10

        Item { implicitWidth: row.indicator.implicitWidth }
    }

    background: Rectangle {
        radius: Brand.radius
        color: row.checked ? Brand.mixed(Brand.panel, Brand.accent, 0.1) : Brand.panel
        border.width: row.checked ? 2 : 1
        border.color: row.checked ? Brand.accent : row.hovered ? Brand.controlBorder : Brand.border

        Rectangle {
            anchors.fill: parent
            radius: parent.radius
            color: row.down ? Brand.faded(Brand.text, 0.06)
                 : row.hovered && !row.checked ? Brand.faded(Brand.text, 0.025) : "transparent"
        }

        FocusRing {
            shown: row.visualFocus
            inner: parent.radius
            gap: row.checked ? 1 : 0
        }
    }
}
