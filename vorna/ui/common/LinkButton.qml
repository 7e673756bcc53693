// SPDX-License-Identifier: Apache-2.0
// A small text that can be tapped.
import QtQuick
import QtQuick.Templates as T
import Vorna.Ui

T.AbstractButton {
    id: root

    required property color titleColor

    font.pixelSize: 12
    implicitWidth: implicitContentWidth
    implicitHeight: implicitContentHeight
    opacity: down ? 0.5 : 1
    Accessible.role: Accessible.Button
    Accessible.name: text
    Accessible.onPressAction: clicked()
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    background: FocusRing {
        shown: root.visualFocus
        radius: 4
    }

    contentItem: Text {
        text: root.text
        textFormat: Text.PlainText
        font: root.font
        color: root.titleColor
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
    }
}
