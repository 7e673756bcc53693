// SPDX-License-Identifier: Apache-2.0
// A button that consists of a line of small text.
import QtQuick

TapButton {
    id: root

    required property color titleColor

    font.pixelSize: 12
    implicitWidth: implicitContentWidth
    implicitHeight: implicitContentHeight
    opacity: down ? 0.5 : 1
    focusRing.radius: 4

    contentItem: Text {
        text: root.text
        textFormat: Text.PlainText
        font: root.font
        color: root.titleColor
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
    }
}
