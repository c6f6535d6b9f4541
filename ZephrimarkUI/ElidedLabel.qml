import QtQuick
import ZephrimarkUI

// One line that loses its middle when it is too long, and shows the whole of itself under the
// pointer.
TextLabel {
    id: label

    elide: Text.ElideMiddle
    maximumLineCount: 1
    textFormat: Text.PlainText

    HoverHandler { id: pointer }

    HoverTip {
        text: label.text
        shown: pointer.hovered && label.truncated
    }
}
