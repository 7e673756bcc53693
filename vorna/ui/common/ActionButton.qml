// SPDX-License-Identifier: Apache-2.0
// The wide button that moves a screen on: a capsule with a gradient and a title.
import QtQuick
import Vorna.Ui
import QtQuick.Templates as T

T.AbstractButton {
    id: root

    required property color firstColor
    required property color secondColor
    required property color titleColor
    property bool showsArrow: false
    // How far the arrow's right edge lies inside the button's; without a number it lies at the leading edge.
    property real arrowTrailing: NaN

    font.pixelSize: 18
    font.bold: true
    opacity: down ? 0.8 : 1
    Accessible.role: Accessible.Button
    Accessible.name: text
    Accessible.onPressAction: clicked()
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    background: GradientBackground {
        objectName: "gradient"
        firstColor: root.firstColor
        secondColor: root.secondColor

        FocusRing {
            shown: root.visualFocus
            radius: height / 2
        }

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
        // A long title ends before the arrow, and keeps to the middle.
        leftPadding: root.showsArrow && !isNaN(root.arrowTrailing) ? root.arrowTrailing + 28 : 20
        rightPadding: leftPadding
    }
}
