// SPDX-License-Identifier: Apache-2.0
// Centred text that wraps where it would come too close to the screen's edges.
import QtQuick

Text {
    id: root

    required property real screenWidth

    width: Math.min(implicitWidth, screenWidth - 32)
    textFormat: Text.PlainText
    horizontalAlignment: Text.AlignHCenter
    wrapMode: Text.Wrap
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
