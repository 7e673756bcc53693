// SPDX-License-Identifier: Apache-2.0
// A button of the start page.
import QtQuick
import QtQuick.Controls.Basic

Button {
    id: root

    property color accent: "#ff7e5f"

    width: parent.width
    height: 48
    font.pixelSize: 16

    background: Rectangle {
        radius: 12
        color: root.down ? "#332f66" : "#26244d"
        border.color: root.visualFocus ? "white" : root.accent
        border.width: root.visualFocus ? 2 : 1
    }

    contentItem: Text {
        text: root.text
        font: root.font
        color: "white"
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
    }
}
