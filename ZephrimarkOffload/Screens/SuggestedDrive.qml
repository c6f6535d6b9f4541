import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import ZephrimarkUI

// A drive that can be added with a press anywhere on its row.
T.Button {
    id: row

    required property string name
    required property string free

    text: qsTr("Add %1").arg(name)
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    implicitHeight: 38
    leftPadding: 12
    rightPadding: 12

    Accessible.name: text
    Accessible.description: free
    Accessible.onPressAction: row.clicked()

    Keys.onShortcutOverride: event => event.accepted = event.key === Qt.Key_Return
                                                       || event.key === Qt.Key_Enter
    Keys.onReturnPressed: event => pressedByKey(event)
    Keys.onEnterPressed: event => pressedByKey(event)

    // A held key repeats; one press is one press.
    function pressedByKey(event: var) {
        if (!event.isAutoRepeat)
            clicked()
    }

    contentItem: RowLayout {
        spacing: 10

        Icon { name: "plus.circle"; color: Brand.accent }
        Icon { name: "externaldrive"; size: 20 }

        ElidedLabel {
            Layout.maximumWidth: row.width / 2
            text: row.name
            font: Brand.calloutStrong
            Accessible.ignored: true
        }

        Figures {
            text: row.free
            font: Brand.caption
            color: Brand.secondaryText
        }

        Item { Layout.fillWidth: true }

        Text {
            text: qsTr("Add")
            font: Brand.callout
            color: Brand.accent
        }
    }

    background: Rectangle {
        radius: Brand.radius
        color: row.down ? Brand.mixed(Brand.panel, Brand.text, 0.06) : Brand.panel
        border.color: row.hovered ? Brand.controlBorder : Brand.border

        FocusRing {
            shown: row.visualFocus
            inner: parent.radius
        }
    }
}
