// SPDX-License-Identifier: Apache-2.0
// Dims the screen below and blocks all input to it while a purchase is in progress.
import QtQuick
import Vorna.Ui

Rectangle {
    id: root

    required property PaidProductLoadingScreenView controller
    // Whether the spinner has its position.
    property bool isPlaced: false

    color: "#66000000"
    focus: true
    onWidthChanged: place()
    onHeightChanged: place()
    Accessible.role: Accessible.Dialog
    Accessible.name: "Loading"

    // Centres the spinner once; it does not follow when the window is resized.
    function place() {
        if (!isPlaced && width > 0 && height > 0) {
            isPlaced = true;
            spinner.x = (width - spinner.width) / 2;
            spinner.y = (height - spinner.height) / 2;
        }
    }

    MouseArea {
        anchors.fill: parent
        hoverEnabled: true
        acceptedButtons: Qt.AllButtons
        onWheel: wheel => wheel.accepted = true
    }

    SpinningArcLoadingView {
        id: spinner
        objectName: "spinner"
        width: 60
        height: 60
    }
}
