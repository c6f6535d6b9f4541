import QtQuick
import ZephrimarkUI

// Text whose figures are all equally wide, so that a running number keeps still. For short texts.
Item {
    id: figures

    property string text
    property font font: Brand.body
    property color color: Brand.text

    readonly property var parts: text.match(/\d|\D+/g) || []

    implicitWidth: row.implicitWidth
    implicitHeight: metrics.height
    baselineOffset: metrics.ascent

    Accessible.role: Accessible.StaticText
    Accessible.name: text

    FontMetrics {
        id: metrics

        font: figures.font
        readonly property real figureWidth: {
            let widest = 0
            for (const figure of "0123456789")
                widest = Math.max(widest, advanceWidth(figure))
            return Math.ceil(widest)
        }
    }

    Row {
        id: row

        Repeater {
            // The number of parts and not the parts: a new value then changes texts and makes no
            // items.
            model: figures.parts.length

            Text {
                required property int index
                // qmllint disable unqualified
                readonly property string part: figures.parts[index] || ""
                readonly property bool isFigure: part >= "0" && part <= "9"

                width: isFigure ? metrics.figureWidth : implicitWidth
                horizontalAlignment: isFigure ? Text.AlignHCenter : Text.AlignLeft
                text: part
                textFormat: Text.PlainText
                font: figures.font
                color: figures.color
                // qmllint enable unqualified
            }
        }
    }
}
