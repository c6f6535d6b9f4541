import QtQuick
import QtQuick.Templates as T
import ZephrimarkUI

// Scrolls what is declared inside up and down, and brings the control into view that the keyboard
// goes to. Give it a width and a height; the content gets its width.
Flickable {
    id: area

    // Around the content.
    property int inset: Brand.margin
    default property alias content: holder.data

    contentWidth: width
    contentHeight: holder.childrenRect.height + 2 * inset
    boundsBehavior: Flickable.StopAtBounds
    flickableDirection: Flickable.VerticalFlick
    clip: true

    readonly property Item focused: Window.activeFocusItem

    onFocusedChanged: {
        for (let item = focused; item !== null; item = item.parent) {
            if (item === holder)
                return reveal(focused)
        }
    }

    function reveal(item: Item) {
        const top = item.mapToItem(contentItem, 0, 0).y - inset
        const bottom = top + item.height + 2 * inset
        contentY = Math.max(0, Math.min(top, Math.max(contentY, bottom - height)))
    }

    Item {
        id: holder

        x: area.inset
        y: area.inset
        width: area.width - 2 * area.inset
    }

    T.ScrollBar.vertical: T.ScrollBar {
        id: bar

        visible: policy !== T.ScrollBar.AlwaysOff
        policy: area.contentHeight > area.height ? T.ScrollBar.AlwaysOn : T.ScrollBar.AlwaysOff
        implicitWidth: 10
        padding: 2
        minimumSize: 0.1

        contentItem: Rectangle {
            implicitWidth: 6
            radius: 3
            color: Brand.faded(Brand.text, bar.pressed ? 0.45 : bar.hovered ? 0.35 : 0.2)
        }
    }
}
