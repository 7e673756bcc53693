// SPDX-License-Identifier: Apache-2.0
// The "✕" in a corner of a screen. The glyph lies where `glyphLeft` and `glyphTop` say; a finger hits more
// than the glyph.
import QtQuick
import Vorna.Ui
import QtQuick.Templates as T

T.AbstractButton {
    id: root

    required property color glyphColor
    required property real glyphLeft
    required property real glyphTop
    // How far the button reaches around its glyph.
    readonly property real reach: 10

    x: mirrored ? parent.width - glyphLeft - width + reach : glyphLeft - reach
    y: glyphTop - reach
    padding: reach
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    text: "✕"
    opacity: down ? 0.5 : 1
    Accessible.role: Accessible.Button
    Accessible.name: "Close"
    Accessible.onPressAction: clicked()
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    background: FocusRing {
        shown: root.visualFocus
        anchors.margins: 0
        radius: 6
    }

    contentItem: Text {
        objectName: "glyph"
        text: root.text
        font: root.font
        color: root.glyphColor
    }
}
