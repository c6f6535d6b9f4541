import QtQuick
import QtQuick.Layouts
import ZephrimarkUI

// Where the user is among the steps of the work, and one line about what is going on.
Item {
    id: bar

    // The titles of the steps.
    property var steps: []
    // The step at hand, from 0; as many as there are steps when all are complete.
    property int current: 0
    property string status
    property bool busy: false

    implicitWidth: 480
    implicitHeight: column.implicitHeight + 20

    // One element for assistive technology, which would otherwise read a dozen fragments.
    Accessible.role: Accessible.StaticText
    Accessible.name: {
        const count = steps.length
        if (count === 0)
            return status
        const parts = [Math.min(current + 1, count), count, steps[Math.min(current, count - 1)],
                       status]
        // Not arg(), which would take a "%1" in the status for a place to fill.
        return qsTr("Step %1 of %2: %3. %4").replace(/%(\d)/g, (place, number) => parts[number - 1])
    }

    ColumnLayout {
        id: column

        anchors.fill: parent
        anchors.leftMargin: Brand.margin
        anchors.rightMargin: Brand.margin
        anchors.topMargin: 10
        anchors.bottomMargin: 10
        spacing: Brand.small

        RowLayout {
            spacing: Brand.small

            Repeater {
                model: bar.steps

                RowLayout {
                    id: step

                    required property int index
                    required property string modelData
                    // qmllint disable unqualified
                    readonly property bool complete: index < bar.current
                    readonly property bool isCurrent: index === bar.current
                    // qmllint enable unqualified

                    spacing: Brand.small

                    Rectangle {
                        visible: step.index > 0
                        Layout.fillWidth: true
                        Layout.minimumWidth: 16
                        Layout.preferredWidth: 56
                        Layout.maximumWidth: 56
                        implicitHeight: 2
                        radius: 1
                        // qmllint disable unqualified
                        color: step.index <= bar.current ? Brand.accent
                                                         : Brand.faded(Brand.secondaryText, 0.25)
                        // qmllint enable unqualified
                    }

                    StepCircle {
                        number: step.index + 1
                        complete: step.complete
                        current: step.isCurrent
                    }

                    Text {
                        Layout.fillWidth: true
                        Layout.maximumWidth: Math.ceil(implicitWidth)
                        text: step.modelData
                        textFormat: Text.PlainText
                        elide: Text.ElideRight
                        font: step.isCurrent ? Brand.calloutStrong : Brand.callout
                        color: step.isCurrent ? Brand.text
                               : step.complete ? Brand.secondaryText : Brand.tertiaryText
                    }
                }
            }

            Item { Layout.fillWidth: true }
        }

        RowLayout {
            spacing: Brand.small

            Item {
                implicitWidth: bar.busy ? 14 : 6
                implicitHeight: 16
                Layout.alignment: Qt.AlignTop

                Spinner {
                    anchors.centerIn: parent
                    running: bar.busy
                    Accessible.ignored: true
                }

                Rectangle {
                    anchors.centerIn: parent
                    visible: !bar.busy
                    width: 6
                    height: 6
                    radius: 3
                    color: Brand.accent
                }
            }

            Text {
                Layout.fillWidth: true
                text: bar.status
                textFormat: Text.PlainText
                font: Brand.callout
                color: Brand.secondaryText
                wrapMode: Text.Wrap
                maximumLineCount: 2
                elide: Text.ElideRight
            }
        }
    }
}
