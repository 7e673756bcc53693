// SPDX-License-Identifier: Apache-2.0
// Dims the screen and keeps every tap from it while a purchase runs.
import QtQuick
import Vorna.Ui

Rectangle {
    id: root

    required property PaidProductLoadingScreenView controller
    property bool isPlaced: false

    // The arc stays where the middle was when the overlay appeared.
    function place() {
        if (!isPlaced && width > 0 && height > 0) {
            isPlaced = true;
            spinner.x = (width - spinner.width) / 2;
            spinner.y = (height - spinner.height) / 2;
        }
    }

    color: "#66000000"
    focus: true
    onWidthChanged: place()
    onHeightChanged: place()
    Accessible.role: Accessible.Dialog
    Accessible.name: "Loading"

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
