import QtQuick
import ZephrimarkUI

// What stands before a figure.
TextLabel {
    color: Brand.secondaryText
}
