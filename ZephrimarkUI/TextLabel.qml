import QtQuick
import ZephrimarkUI

// Text in the colours and type of the application.
Text {
    color: Brand.text
    linkColor: Brand.accent
    font: Brand.body

    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
