// SPDX-License-Identifier: Apache-2.0
// The host's page, visible where the library shows nothing.
import QtQuick
import VornaPreview

Window {
    id: root

    required property Board board

    title: board.document
    color: board.isDark ? "#1c1e24" : "#f4f5f7"

    Text {
        objectName: "hostPage"
        anchors.centerIn: parent
        width: parent.width - 48
        text: "The host's page\n\n" + root.board.document
        textFormat: Text.PlainText
        color: root.board.isDark ? "#8b909c" : "#6b7079"
        font.pixelSize: 15
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
    }
}
