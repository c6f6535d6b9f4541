import QtQuick
import QtQuick.Layouts
import ZephrimarkOffload
import ZephrimarkUI

// Takes folders that are dropped on the window. While one is held over it, two halves say what will
// become of it.
DropArea {
    id: area

    required property SetupPresenter presenter
    readonly property bool isSource: drag.x < width / 2
    property bool accepts: false

    keys: ["text/uri-list"]
    onEntered: drag => {
        accepts = presenter.canTake(drag.urls)
        drag.accepted = accepts
    }
    onExited: accepts = false
    onDropped: drop => {
        presenter.take(drop.urls, isSource)
        accepts = false
    }

    RowLayout {
        anchors.fill: parent
        anchors.margins: Brand.margin
        spacing: Brand.margin
        visible: area.containsDrag && area.accepts

        DropZone {
            Layout.fillWidth: true
            Layout.fillHeight: true
            symbol: "sdcard"
            text: qsTr("Offload this")
            chosen: area.isSource
        }

        DropZone {
            Layout.fillWidth: true
            Layout.fillHeight: true
            symbol: "externaldrive"
            text: qsTr("Copy here")
            chosen: !area.isSource
        }
    }
}
