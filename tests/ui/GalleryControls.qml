import QtQuick
import QtQuick.Layouts
import ZephrimarkUI

ColumnLayout {
    spacing: Brand.small

    SectionTitle { title: "Card"; symbol: "sdcard"; complete: true; Layout.fillWidth: true }

    Repeater {
        model: [["EOS_DIGITAL", "64.2 GB used of 128 GB"], ["NIKON Z 8", "24.9 GB used of 325 GB"]]

        SelectRow {
            id: row

            required property int index
            required property var modelData

            objectName: "row" + index
            Layout.fillWidth: true
            checked: index === 0
            text: modelData[0]
            description: modelData[1]

            Icon { name: "sdcard"; size: 20 }
            ColumnLayout {
                spacing: 0
                TextLabel { text: row.modelData[0]; font: Brand.bodyStrong }
                TextLabel {
                    text: row.modelData[1]; font: Brand.caption; color: Brand.secondaryText
                }
            }
            Item { Layout.fillWidth: true }
            PushButton { symbol: "eject"; borderless: true; tip: "Eject" }
        }
    }

    RowLayout {
        spacing: Brand.small
        PushButton { objectName: "plain"; text: "Use a Folder…"; symbol: "folder" }
        PushButton { text: "Small"; small: true }
        PushButton { text: "Prominent"; prominent: true }
        PushButton { text: "Off"; enabled: false }
        PushButton { text: "Destroy"; prominent: true; destructive: true }
        PushButton { text: "Add"; borderless: true }
        TextLabel {
            Layout.fillWidth: true; elide: Text.ElideRight
            text: "1,204 files · 64.2 GB · Canon"; font: Brand.callout
            color: Brand.secondaryText
        }
    }

    SectionTitle {
        title: "Copy to"; detail: "Up to 3 drives, written at the same time"
        symbol: "externaldrive"; Layout.fillWidth: true; Layout.topMargin: Brand.small
    }

    Panel {
        Layout.fillWidth: true
        padding: 10
        contentItem: RowLayout {
            spacing: 10
            Icon { name: "externaldrive.fill"; color: Brand.accent; size: 20 }
            ElidedLabel {
                objectName: "elided"; Layout.preferredWidth: 240
                text: "/media/someone/T7 Shield/Footage/2025-05-03/EOS_DIGITAL"
            }
            Item { Layout.fillWidth: true }
            TextLabel { text: "20.3 GB free"; font: Brand.callout; color: Brand.red }
            PushButton { symbol: "minus.circle"; borderless: true; tip: "Remove" }
        }
    }

    Panel {
        Layout.fillWidth: true
        padding: 10
        tone: Brand.orange
        contentItem: RowLayout {
            spacing: 10
            Icon { name: "exclamationmark.triangle.fill"; color: Brand.orange }
            TextLabel {
                Layout.fillWidth: true
                text: "RAID is almost full. 64.2 GB are needed, 20.3 GB are free."
                font: Brand.callout
            }
        }
    }

    RowLayout {
        spacing: Brand.small
        TextLabel { text: "Name" }
        TextEntry {
            objectName: "entry"; mono: true; text: "{date}/{card}"; Layout.preferredWidth: 240
            tip: "A folder on each drive"
        }
        TextEntry { placeholderText: "Note for the report"; Layout.preferredWidth: 180 }
        TextLabel { text: "Checksum" }
        Picker {
            objectName: "picker"; name: "Checksum"
            model: ["XXH64", "MD5", "---", "SHA-1", "C4"]
        }
    }

    Toggle {
        objectName: "toggle"; Layout.fillWidth: true; text: "Read the card twice"
        trailing: "about <b>4 min</b> longer"
        caption: "Finds a card reader that delivers different data on a second reading."
    }
    Toggle { Layout.fillWidth: true; text: "Card image"; checked: true }

    ProgressLine { objectName: "progress"; Layout.fillWidth: true; value: 0.46 }
    RowLayout {
        spacing: Brand.medium
        Figures { text: "245.3 MB/s" }
        Figures { text: "111.1 MB/s" }
        Spinner { running: true }
        ProgressLine { Layout.preferredWidth: 160; indeterminate: true }
        TextLabel { text: "title2"; font: Brand.title2 }
        TextLabel { text: "title3"; font: Brand.title3 }
        TextLabel { text: "tertiary"; color: Brand.tertiaryText }
        TextLabel { text: "green"; color: Brand.green }
        TextLabel { text: "orange"; color: Brand.orange }
    }

    Flow {
        Layout.fillWidth: true
        spacing: 10
        Repeater {
            model: ["sdcard", "folder", "externaldrive", "externaldrive.fill",
                "laptopcomputer", "checkmark",
                "checkmark.circle.fill", "checkmark.seal.fill", "circle", "plus.circle",
                "minus.circle",
                "exclamationmark.triangle", "exclamationmark.triangle.fill",
                "exclamationmark.circle.fill",
                "checkmark.shield", "info.circle", "arrow.down.doc", "eject",
                "chevron.down",
                "menu", "doc.text", "arrow.clockwise", "spinner", "appicon"]
            Icon {
                required property string modelData; name: modelData; size: 22; color: Brand.text
            }
        }
    }
    RowLayout {
        spacing: Brand.medium
        Repeater {
            model: [16, 24, 32, 48, 96]
            Icon { required property int modelData; name: "appicon"; size: modelData }
        }
        Icon { name: "checkmark.seal.fill"; color: Brand.green; size: 44 }
        Icon { name: "exclamationmark.triangle.fill"; color: Brand.orange; size: 44 }
        Icon { name: "exclamationmark.circle.fill"; color: Brand.red; size: 44 }
    }
}
