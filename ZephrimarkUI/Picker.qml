import QtQuick
import QtQuick.Templates as T
import ZephrimarkUI

// One choice out of a list. An entry "---" is a line between groups, which cannot be chosen. With
// the list closed, Space, Return, Up and Down open it, so that no key changes the choice unseen.
T.ComboBox {
    id: picker

    // What is chosen here, for assistive technology, such as the text before it.
    property string name
    readonly property string separator: "---"

    // Where the highlight came from, to pass over a separator in the same direction.
    property int lastHighlight: -1

    function isSeparator(index: int): bool {
        return index >= 0 && textAt(index) === separator
    }

    // The key that opened the list, until it is let go: the template takes the end of Return for a
    // choice.
    property int openingKey: 0

    function openByKey(event: var) {
        event.accepted = !popup.visible
        if (!popup.visible) {
            openingKey = event.key
            popup.open()
        }
    }

    font: Brand.callout
    opacity: enabled ? 1 : 0.45
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    wheelEnabled: false
    implicitWidth: metrics.widest + leftPadding + rightPadding
    implicitHeight: Brand.controlHeight
    leftPadding: 10
    rightPadding: 32

    Accessible.role: Accessible.ComboBox
    Accessible.name: name === "" ? displayText : name + ", " + displayText
    Accessible.onPressAction: if (picker.enabled) picker.popup.open()

    Keys.onShortcutOverride: event => event.accepted = event.key === Qt.Key_Return
                                                       || event.key === Qt.Key_Enter
    Keys.onReturnPressed: event => openByKey(event)
    Keys.onEnterPressed: event => openByKey(event)
    // Letters, Home and End would choose unseen.
    Keys.onPressed: event => {
        const opens = [Qt.Key_Space, Qt.Key_Return, Qt.Key_Enter, Qt.Key_Up, Qt.Key_Down]
        const passes = [Qt.Key_Tab, Qt.Key_Backtab, Qt.Key_Escape]
        const moves = [Qt.Key_Home, Qt.Key_End, Qt.Key_PageUp, Qt.Key_PageDown]
        if (popup.visible || opens.includes(event.key) || passes.includes(event.key))
            return
        event.accepted = event.text !== "" || moves.includes(event.key)
    }
    Keys.onUpPressed: event => openByKey(event)
    Keys.onDownPressed: event => openByKey(event)

    Keys.onReleased: event => {
        event.accepted = event.key === openingKey
        openingKey = 0
    }

    onHighlightedIndexChanged: {
        const upwards = highlightedIndex < lastHighlight
        lastHighlight = highlightedIndex
        if (!popup.visible || !isSeparator(highlightedIndex))
            return
        if (upwards)
            decrementCurrentIndex()
        else
            incrementCurrentIndex()
    }

    FontMetrics {
        id: metrics

        // As wide as the widest entry, so that the choice does not change the width.
        readonly property real widest: {
            let width = 0
            for (let index = 0; index < picker.count; ++index)
                width = Math.max(width, advanceWidth(picker.textAt(index)))
            return Math.ceil(width) + 1
        }

        font: picker.font
    }

    contentItem: Text {
        text: picker.displayText
        textFormat: Text.PlainText
        font: picker.font
        color: Brand.text
        elide: Text.ElideRight
        verticalAlignment: Text.AlignVCenter
    }

    indicator: Icon {
        x: picker.width - width - 9
        y: Math.round((picker.height - height) / 2)
        name: "chevron.down"
        size: 14
        color: Brand.secondaryText
    }

    background: Rectangle {
        radius: Brand.controlRadius
        color: Brand.field
        border.color: Brand.controlBorder

        Rectangle {
            anchors.fill: parent
            radius: parent.radius
            color: picker.down ? Brand.pressed : picker.hovered ? Brand.hover : "transparent"
        }

        FocusRing { shown: picker.visualFocus && !picker.popup.visible }
    }

    delegate: PickerEntry {
        required property int index

        width: ListView.view.width
        // qmllint disable unqualified
        text: picker.textAt(index)
        separator: picker.isSeparator(index)
        current: picker.currentIndex === index
        highlighted: picker.highlightedIndex === index
        font: picker.font
        // qmllint enable unqualified
    }

    popup: T.Popup {
        y: picker.height + 4
        width: Math.max(picker.width, 120)
        implicitHeight: Math.min(contentItem.implicitHeight + topPadding + bottomPadding, 320)
        margins: 8
        padding: 5

        contentItem: ListView {
            clip: true
            implicitHeight: contentHeight
            model: picker.delegateModel // qmllint disable
            currentIndex: picker.highlightedIndex
            boundsBehavior: Flickable.StopAtBounds
            highlightMoveDuration: 0
        }

        background: Raised {}
    }
}
