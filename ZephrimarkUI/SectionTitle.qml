import QtQuick
import QtQuick.Layouts
import ZephrimarkUI

// The heading of a section: its symbol, or a check when the section is complete, title and detail.
RowLayout {
    id: section

    property string symbol
    property string title
    property string detail
    property bool complete: false

    spacing: Brand.small

    Accessible.role: Accessible.Heading
    Accessible.name: title
    Accessible.description: !complete ? detail : detail === "" ? qsTr("Complete")
                                                               : qsTr("Complete. %1").arg(detail)

    Icon {
        size: Brand.symbol
        name: section.complete ? "checkmark.circle.fill" : section.symbol
        color: section.complete ? Brand.accent : Brand.secondaryText
    }

    Text {
        text: section.title
        textFormat: Text.PlainText
        font: Brand.headline
        color: Brand.text
    }

    Text {
        Layout.fillWidth: true
        Layout.alignment: Qt.AlignBaseline
        text: section.detail
        textFormat: Text.PlainText
        elide: Text.ElideRight
        font: Brand.caption
        color: Brand.secondaryText
    }
}
