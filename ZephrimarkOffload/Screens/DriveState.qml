import QtQuick
import QtQuick.Layouts
import ZephrimarkUI

// How an offload goes on one drive.
Panel {
    id: row

    required property string place
    required property string outcome
    required property real fraction
    required property bool isProblem

    topPadding: 8
    bottomPadding: 8

    RowLayout {
        anchors.fill: parent
        spacing: 10

        // Not on the panel, whose template puts a role of its own in place of any other.
        Accessible.role: Accessible.ListItem
        Accessible.name: row.place
        Accessible.description: row.outcome

        Icon {
            name: row.isProblem ? "exclamationmark.circle.fill" : "externaldrive"
            color: row.isProblem ? Brand.orange : Brand.secondaryText
            size: 20
        }

        ColumnLayout {
            Layout.fillWidth: true
            spacing: Brand.tiny

            RowLayout {
                spacing: Brand.medium

                ElidedLabel {
                    Layout.fillWidth: true
                    text: row.place
                    font: Brand.callout
                    color: Brand.secondaryText
                    Accessible.ignored: true
                }

                ElidedLabel {
                    Layout.maximumWidth: row.width * 0.6
                    text: row.outcome
                    font: Brand.callout
                    color: row.isProblem ? Brand.orange : Brand.secondaryText
                    Accessible.ignored: true
                }
            }

            ProgressLine {
                Layout.fillWidth: true
                implicitHeight: 3
                value: row.fraction
                color: row.isProblem ? Brand.orange : Brand.accent
                Accessible.ignored: true
            }
        }
    }
}
