// SPDX-License-Identifier: Apache-2.0
// The error in a document, for developers: one centred text on white.
import QtQuick
import Vorna.Ui

Rectangle {
    id: root

    required property ErrorViewController controller

    color: "white"

    Text {
        anchors.verticalCenter: parent.verticalCenter
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.leftMargin: 24
        anchors.rightMargin: 24
        text: root.controller.text
        textFormat: Text.PlainText
        color: "black"
        font.pixelSize: 17
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
        Accessible.role: Accessible.StaticText
        Accessible.name: text
    }
}
