// SPDX-License-Identifier: Apache-2.0
// A spinner: three quarters of a circle, one turn per second. The arc is painted once and rotated on the render
// thread, so it keeps turning while the main thread is busy.
import QtQuick
import Vorna.Ui

Item {
    id: root

    readonly property alias isRotating: rotation.running

    Accessible.role: Accessible.ProgressBar
    Accessible.name: "Loading"

    SpinningArc {
        id: arc
        objectName: "spinnerLayer"
        anchors.fill: parent
        color: "white"
        lineWidth: 5
    }

    RotationAnimator {
        id: rotation
        objectName: "rotation"
        target: arc
        from: 0
        to: 360
        duration: 1000
        loops: Animation.Infinite
        running: true
    }
}
