import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import QtQuick.Window
import ZephrimarkUI

// What the dialogs have in common: a title, a message and a row of buttons in the middle of the
// window, with the rest of it gently dimmed. The keyboard stays inside.
T.Dialog {
    id: dialog

    property string message
    // The name of an Icon beside the title.
    property string symbol
    property color symbolColor: Brand.orange
    property int symbolSize: 22
    // Where the keyboard was when the dialog opened; it goes back there.
    property Item before: null

    // What stands below the message.
    property alias details: detailColumn.data
    // The buttons, from left to right.
    default property alias buttons: buttonRow.data

    parent: T.Overlay.overlay
    anchors.centerIn: parent
    modal: true
    focus: true
    closePolicy: T.Popup.CloseOnEscape
    padding: Brand.margin
    width: parent ? Math.min(420, parent.width - 2 * Brand.margin) : 420
    implicitHeight: contentItem.implicitHeight + topPadding + bottomPadding

    onAboutToShow: before = parent.Window.activeFocusItem
    onClosed: {
        if (before !== null && before.visible && before.enabled)
            before.forceActiveFocus(Qt.PopupFocusReason)
        before = null
    }

    contentItem: ColumnLayout {
        spacing: Brand.small

        RowLayout {
            spacing: 10

            Icon {
                visible: dialog.symbol !== ""
                Layout.alignment: Qt.AlignTop
                name: dialog.symbol
                color: dialog.symbolColor
                size: dialog.symbolSize
            }

            TextLabel {
                Layout.fillWidth: true
                Layout.fillHeight: true
                verticalAlignment: Text.AlignVCenter
                text: dialog.title
                textFormat: Text.PlainText
                font: Brand.headline
                wrapMode: Text.Wrap
            }
        }

        TextLabel {
            visible: text !== ""
            Layout.fillWidth: true
            text: dialog.message
            textFormat: Text.PlainText
            font: Brand.callout
            color: Brand.secondaryText
            lineHeight: 1.15
            wrapMode: Text.Wrap
        }

        ColumnLayout {
            id: detailColumn

            visible: children.length > 0
            spacing: Brand.tiny
        }

        RowLayout {
            id: buttonRow

            Layout.topMargin: Brand.medium
            spacing: Brand.medium

            Item { Layout.fillWidth: true }
        }
    }

    background: Raised { radius: Brand.medium }

    T.Overlay.modal: Rectangle { color: Brand.dim }

    enter: Transition {
        NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Brand.quick }
    }
    exit: Transition {
        NumberAnimation { property: "opacity"; from: 1; to: 0; duration: Brand.quick }
    }
}
