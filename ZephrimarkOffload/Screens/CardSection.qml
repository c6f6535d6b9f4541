import QtQuick
import QtQuick.Layouts
import ZephrimarkOffload
import ZephrimarkUI

// The cards to choose from, and what is known of the chosen one.
ColumnLayout {
    id: section

    required property SetupPresenter presenter

    signal folderWanted

    spacing: Brand.small

    SectionTitle {
        Layout.fillWidth: true
        symbol: "sdcard"
        title: qsTr("Card")
        complete: section.presenter.hasSource
    }

    TextLabel {
        visible: text !== ""
        text: section.presenter.cardHint
        font: Brand.callout
        color: Brand.secondaryText
    }

    ColumnLayout {
        visible: section.presenter.cards.count > 0
        Layout.fillWidth: true
        spacing: Brand.small

        Repeater {
            model: section.presenter.cards

            SelectRow {
                id: row

                required property int index
                required property string name
                required property string detail
                required property bool selected
                required property string symbol

                Layout.fillWidth: true
                text: name
                description: detail
                checked: selected
                onClicked: {
                    section.presenter.selectCard(index) // qmllint disable unqualified
                    checked = Qt.binding(() => selected)
                }

                Icon { name: row.symbol; size: 22 }

                ColumnLayout {
                    Layout.fillWidth: true
                    spacing: 0

                    ElidedLabel {
                        Layout.fillWidth: true
                        text: row.name
                        font: Brand.calloutStrong
                        Accessible.ignored: true
                    }

                    ElidedLabel {
                        visible: text !== ""
                        Layout.fillWidth: true
                        text: row.detail
                        font: Brand.caption
                        color: Brand.secondaryText
                        Accessible.ignored: true
                    }
                }
            }
        }
    }

    RowLayout {
        spacing: Brand.medium

        PushButton {
            text: qsTr("Use a Folder…")
            small: true
            onClicked: section.folderWanted()
        }

        TextLabel {
            Layout.fillWidth: true
            text: section.presenter.sourceSummary
            font: Brand.callout
            color: Brand.secondaryText
            elide: Text.ElideRight
        }
    }

    TextLabel {
        visible: text !== ""
        Layout.fillWidth: true
        text: section.presenter.ejectMessage
        font: Brand.caption
        color: Brand.secondaryText
        wrapMode: Text.Wrap
    }
}
