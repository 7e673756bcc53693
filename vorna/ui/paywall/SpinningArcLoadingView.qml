// SPDX-License-Identifier: Apache-2.0
// Three quarters of a circle that turn once a second. The arc is painted once; turning it is the render
// thread's work, so that it goes on while the application is busy.
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
