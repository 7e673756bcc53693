// SPDX-License-Identifier: Apache-2.0
// The "✕" in the corner of a screen. The area that reacts to taps is larger than the glyph.
import QtQuick

TapButton {
    id: root

    required property color glyphColor
    // Position of the glyph within the parent; from the right edge if mirrored.
    required property real glyphLeft
    required property real glyphTop
    // How far the button extends beyond its glyph on each side.
    readonly property real reach: 10

    x: mirrored ? parent.width - glyphLeft - width + reach : glyphLeft - reach
    y: glyphTop - reach
    padding: reach
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    text: "✕"
    opacity: down ? 0.5 : 1
    Accessible.name: "Close"
    focusRing.anchors.margins: 0
    focusRing.radius: 6

    contentItem: Text {
        objectName: "glyph"
        text: root.text
        font: root.font
        color: root.glyphColor
    }
}
