// SPDX-License-Identifier: Apache-2.0
// A text of as many lines as it needs, centred, never wider than its screen.
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
