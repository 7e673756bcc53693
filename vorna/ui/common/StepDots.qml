// SPDX-License-Identifier: Apache-2.0
// A dot for each step of a sequence; the current one is opaque. If the row is wider than the screen, only the
// visible dots are created, so the number of steps is unlimited.
import QtQuick

Item {
    id: root

    required property int stepIndex
    required property int stepCount
    // Width of the visible part, centred on the row.
    property real visibleWidth: parent ? parent.width : 0

    readonly property int count: Math.max(0, stepCount)
    // Distance between the left edges of neighbouring dots.
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
