import QtQuick
import QtQuick.Layouts
import ZephrimarkOffload
import ZephrimarkUI

// The name of the folder that the copies go into.
ColumnLayout {
    id: section

    required property SetupPresenter presenter

    spacing: Brand.small

    SectionTitle {
        Layout.fillWidth: true
        symbol: "folder"
        title: qsTr("Folder")
    }

    RowLayout {
        id: sentence

        visible: section.presenter.folderName !== ""
        spacing: Brand.tiny

        TextLabel {
            id: beginning

            text: qsTr("Files go into")
            font: Brand.callout
            color: Brand.secondaryText
        }

        ElidedLabel {
            Layout.maximumWidth: section.width - beginning.implicitWidth - ending.implicitWidth
                                 - 2 * sentence.spacing
            text: section.presenter.folderName
            font: Brand.mono
        }

        TextLabel {
            id: ending

            text: section.presenter.onDrives
            font: Brand.callout
            color: Brand.secondaryText
        }
    }

    RowLayout {
        spacing: Brand.small

        TextLabel {
            id: nameLabel

            // Both fields begin at one line.
            Layout.minimumWidth: Math.ceil(Math.max(implicitWidth, projectLabel.implicitWidth))
            text: qsTr("Name")
            font: Brand.callout
        }

        Picker {
            implicitWidth: 300
            model: section.presenter.presetNames
            currentIndex: section.presenter.presetIndex
            name: nameLabel.text
            onActivated: index => {
                section.presenter.choosePreset(index)
                currentIndex = Qt.binding(() => section.presenter.presetIndex)
            }
        }

        TextEntry {
            visible: section.presenter.isCustom
            Layout.fillWidth: true
            Layout.maximumWidth: 360
            mono: true
            placeholderText: "{date}/{card}"
            tip: section.presenter.tokensHelp
            text: section.presenter.templateText
            name: qsTr("Folder template")
            onTextEdited: section.presenter.templateText = text
        }
    }

    RowLayout {
        visible: section.presenter.needsProject
        spacing: Brand.small

        TextLabel {
            id: projectLabel

            Layout.minimumWidth: nameLabel.Layout.minimumWidth
            text: qsTr("Project")
            font: Brand.callout
        }

        TextEntry {
            implicitWidth: 300
            placeholderText: qsTr("Project")
            text: section.presenter.project
            name: projectLabel.text
            onTextEdited: section.presenter.project = text
        }
    }
}
