// SPDX-License-Identifier: Apache-2.0
// The wide button that advances a screen: a capsule with a gradient, a title and an optional arrow.
import QtQuick
import Vorna.Ui

TapButton {
    id: root

    required property color firstColor
    required property color secondColor
    required property color titleColor
    property bool showsArrow: false
    // Distance from the arrow's trailing edge to the button's; NaN puts the arrow at the leading edge.
    property real arrowTrailing: NaN

    font.pixelSize: 18
    font.bold: true
    opacity: down ? 0.8 : 1
    focusRing.radius: focusRing.height / 2

    background: GradientBackground {
        objectName: "gradient"
        firstColor: root.firstColor
        secondColor: root.secondColor

        ArrowSymbol {
            objectName: "arrow"
            visible: root.showsArrow
            x: isNaN(root.arrowTrailing) === root.mirrored ? parent.width - width - (root.mirrored ? 0 : root.arrowTrailing) : root.mirrored ? root.arrowTrailing : 0
            rotation: root.mirrored ? 180 : 0
            anchors.verticalCenter: parent.verticalCenter
        }
    }

    contentItem: Text {
        text: root.text
        textFormat: Text.PlainText
        font: root.font
        color: root.titleColor
        elide: Text.ElideRight
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
        // A long title stays centred and ends before the arrow.
        leftPadding: root.showsArrow && !isNaN(root.arrowTrailing) ? root.arrowTrailing + 28 : 20
        rightPadding: leftPadding
    }
}
