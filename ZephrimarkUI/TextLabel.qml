import QtQuick
import QtQuick.Templates as T
import ZephrimarkUI

// Text in the colours and type of the application.
T.Label {
    color: Brand.text
    linkColor: Brand.accent
    font: Brand.body
}
