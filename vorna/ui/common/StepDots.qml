// SPDX-License-Identifier: Apache-2.0
// One dot for each step of a sequence; the present one is opaque. Of a row that is wider than the screen only
// the dots in sight are made, so that any number of steps will do.
import QtQuick

Item {
    id: root

    required property int stepIndex
    required property int stepCount
    // How much of the row can be seen, around its centre.
    property real visibleWidth: parent ? parent.width : 0

    readonly property int count: Math.max(0, stepCount)
    readonly property real pitch: 5 + 8
    readonly property int firstDot: Math.max(0, Math.floor((width - visibleWidth) / 2 / pitch))

    implicitWidth: Math.max(0, count * pitch - 8)
    implicitHeight: count > 0 ? 5 : 0
    Accessible.role: Accessible.Indicator
    Accessible.name: "Step " + (stepIndex + 1) + " of " + stepCount

    Repeater {
        model: Math.min(root.count - root.firstDot, Math.ceil(root.visibleWidth / root.pitch) + 1)

        // qmllint disable unqualified
        Rectangle {
            required property int index
            readonly property int dot: root.firstDot + index

            x: (root.LayoutMirroring.enabled ? root.count - 1 - dot : dot) * root.pitch
            width: 5
            height: 5
            radius: 4
            color: dot === root.stepIndex ? "#ffffffff" : "#80ffffff"
            antialiasing: true
        }
        // qmllint enable unqualified
    }
}
