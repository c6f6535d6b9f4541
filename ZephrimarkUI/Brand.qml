pragma Singleton
import QtQuick
import ZephrimarkUI

// The colours, type and distances of the application. All text colours reach a contrast of 4.5 on
// `window`, `panel` and `field`, in the dark and in the light.
QtObject {
    // Follows the desktop; a test or a demonstration may set it.
    property bool dark: SystemLook.dark

    // The blue of the product, and the accent the user chose for the desktop in its place.
    readonly property color offload: Qt.rgba(0.17, 0.42, 0.86, 1)
    readonly property color chosenAccent: SystemLook.accent.a > 0 ? SystemLook.accent : offload

    // accent: text, symbols and lines. accentFill: under text in `accentInk`.
    readonly property color accent: {
        const ground = dark ? field : window
        const plain = legible(chosenAccent, ground)
        return legible(plain, mixed(ground, plain, 0.13))
    }
    readonly property color accentFill: legible(chosenAccent, accentInk)
    readonly property color accentInk: "#ffffff"

    readonly property color window: dark ? "#1b1c1f" : "#f6f7f9"
    readonly property color panel: dark ? "#25262a" : "#ffffff"
    readonly property color field: dark ? "#2c2d32" : "#ffffff"
    // What floats above the window.
    readonly property color raised: dark ? "#2f3136" : "#ffffff"
    readonly property color border: dark ? "#3b3d44" : "#dadde3"
    // The outline of what can be pressed or filled in, a little stronger than that of a panel.
    readonly property color controlBorder: dark ? "#4a4d55" : "#c9cdd5"
    readonly property color track: dark ? "#3b3d44" : "#dfe2e8"
    // A switch that is off.
    readonly property color off: dark ? "#565a63" : "#b9bec8"

    readonly property color text: dark ? "#f2f3f5" : "#191b1f"
    readonly property color secondaryText: dark ? "#b4b8c1" : "#545963"
    readonly property color tertiaryText: dark ? "#989da7" : "#6a6f79"

    readonly property color green: dark ? "#52c878" : "#19753a"
    readonly property color orange: dark ? "#f2a444" : "#a85800"
    readonly property color red: dark ? "#ff7b74" : "#c3261f"
    // Under white text, in a button that destroys.
    readonly property color redFill: dark ? "#c93a33" : "#c3261f"

    // Laid over what lies under the pointer, or is held down.
    // The first two over what is plain, the others over what is filled with a colour.
    readonly property color hover: faded(text, 0.05)
    readonly property color pressed: faded(text, 0.11)
    readonly property color filledHover: Qt.rgba(0, 0, 0, 0.07)
    readonly property color filledPressed: Qt.rgba(0, 0, 0, 0.17)
    readonly property color focusRing: accent
    // Laid over the window behind a dialog.
    readonly property color dim: dark ? Qt.rgba(0, 0, 0, 0.28) : Qt.rgba(0.1, 0.11, 0.14, 0.18)
    // One of several layers of a shadow.
    readonly property color shadow: Qt.rgba(0, 0, 0, dark ? 0.07 : 0.02)

    readonly property font display: typeface(SystemLook.titleFamily, 34, Font.Bold)
    readonly property font title2: typeface(SystemLook.titleFamily, 22, Font.Bold)
    readonly property font title3: typeface(SystemLook.titleFamily, 17, Font.Bold)
    readonly property font headline: typeface(SystemLook.textFamily, 15, Font.DemiBold)
    readonly property font body: typeface(SystemLook.textFamily, 14, Font.Normal)
    readonly property font bodyStrong: typeface(SystemLook.textFamily, 14, Font.DemiBold)
    readonly property font callout: typeface(SystemLook.textFamily, 13, Font.Normal)
    readonly property font calloutStrong: typeface(SystemLook.textFamily, 13, Font.DemiBold)
    readonly property font caption: typeface(SystemLook.textFamily, 12, Font.Normal)
    readonly property font badge: typeface(SystemLook.textFamily, 11, Font.DemiBold)
    readonly property font mono: typeface(SystemLook.monoFamily, 13, Font.Normal)

    readonly property int tiny: 4
    readonly property int small: 8
    readonly property int medium: 12
    readonly property int large: 16
    readonly property int huge: 24
    // From the window's edge to what it shows.
    readonly property int margin: 20

    readonly property int radius: 8
    readonly property int controlRadius: 6
    readonly property int controlHeight: 28
    readonly property int smallControlHeight: 24
    readonly property int largeControlHeight: 36
    readonly property int symbol: 18

    // How long a change of state takes, in milliseconds.
    readonly property int quick: 120

    // `color` at `part` of its own opacity.
    function faded(color: color, part: real): color {
        return Qt.rgba(color.r, color.g, color.b, color.a * part)
    }

    // `over` at `part` on top of the opaque `under`, as one opaque colour.
    function mixed(under: color, over: color, part: real): color {
        return Qt.tint(under, faded(over, part))
    }

    // The contrast of two opaque colours, from 1 to 21.
    function contrast(one: color, other: color): real {
        const first = luminance(one)
        const second = luminance(other)
        return (Math.max(first, second) + 0.05) / (Math.min(first, second) + 0.05)
    }

    // `color`, made lighter or darker until it can be read on `background`.
    function legible(color: color, background: color): color {
        const lighter = luminance(background) < 0.18
        const step = lighter ? 0.01 : -0.01
        const hue = Math.max(0, color.hslHue)
        // A lighter tone looks paler, so it gets more of its colour.
        const saturation = Math.min(1, color.hslSaturation * (lighter ? 1.25 : 1))
        let candidate = color
        for (let lightness = color.hslLightness; contrast(candidate, background) < 4.6;
             lightness += step) {
            if (lightness < 0 || lightness > 1)
                break
            candidate = Qt.hsla(hue, saturation, lightness, 1)
        }
        return candidate
    }

    function luminance(color: color): real {
        const linear = value => value <= 0.04045 ? value / 12.92
                                                 : Math.pow((value + 0.055) / 1.055, 2.4)
        return 0.2126 * linear(color.r) + 0.7152 * linear(color.g) + 0.0722 * linear(color.b)
    }

    function typeface(family: string, pixels: int, weight: int): font {
        return Qt.font({ family: family, pixelSize: pixels, weight: weight })
    }
}
