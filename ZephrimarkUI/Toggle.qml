import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import ZephrimarkUI

// A switch with its label, a line of explanation below and a remark behind the label.
T.Switch {
    id: control

    // Below the label. May contain simple markup.
    property string caption
    // Behind the label, in the secondary colour. May contain simple markup.
    property string trailing

    font: Brand.body
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    opacity: enabled ? 1 : 0.45
    spacing: 10
    implicitWidth: contentItem.implicitWidth
    implicitHeight: Math.max(indicator.implicitHeight, contentItem.implicitHeight)

    Accessible.name: text
    Accessible.description: (trailing === "" || caption === "" ? trailing + caption
                                                               : trailing + ". " + caption)
                            .replace(/<[^>]*>/g, "")
        .replace(/&lt;/g, "<").replace(/&gt;/g, ">").replace(/&quot;/g, '"').replace(/&amp;/g, "&")
    Accessible.onPressAction: control.flip()
    Accessible.onToggleAction: control.flip()

    Keys.onShortcutOverride: event => event.accepted = event.key === Qt.Key_Return
                                                       || event.key === Qt.Key_Enter
    Keys.onReturnPressed: event => { if (!event.isAutoRepeat) flip() }
    Keys.onEnterPressed: event => { if (!event.isAutoRepeat) flip() }

    // As a click would do it.
    function flip() {
        if (!enabled)
            return
        toggle()
        toggled()
        clicked()
    }

    indicator: Rectangle {
        y: Math.round((Math.min(control.height, label.height) - height) / 2)
        implicitWidth: 34
        implicitHeight: 20
        radius: height / 2
        color: control.checked ? Brand.accentFill : Brand.off

        Behavior on color { ColorAnimation { duration: Brand.quick } }

        Rectangle {
            x: control.checked ? parent.width - width - 2 : 2
            anchors.verticalCenter: parent.verticalCenter
            width: 16
            height: 16
            radius: 8
            color: Brand.accentInk

            Behavior on x {
                NumberAnimation {
                    duration: Brand.quick
                    easing.type: Easing.OutCubic
                }
            }
        }

        FocusRing {
            shown: control.visualFocus
            inner: parent.radius
        }
    }

    contentItem: Item {
        implicitWidth: words.implicitWidth + words.x
        implicitHeight: words.implicitHeight

        ColumnLayout {
            id: words

            x: control.indicator.implicitWidth + control.spacing
            width: parent.width - x
            spacing: 1

            RowLayout {
                id: label

                Layout.minimumHeight: 20
                spacing: Brand.small

                Text {
                    text: control.text
                    textFormat: Text.PlainText
                    font: control.font
                    color: Brand.text
                }

                Text {
                    visible: text !== ""
                    Layout.fillWidth: true
                    text: control.trailing
                    textFormat: Text.StyledText
                    elide: Text.ElideRight
                    font: Brand.callout
                    color: Brand.secondaryText
                }
            }

            Text {
                visible: text !== ""
                Layout.fillWidth: true
                text: control.caption
                textFormat: Text.StyledText
                wrapMode: Text.Wrap
                font: Brand.caption
                color: Brand.secondaryText
            }
        }
    }
}
