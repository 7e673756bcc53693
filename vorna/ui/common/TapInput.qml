// SPDX-License-Identifier: Apache-2.0
// Key presses as taps, and a ring while the button has the focus from the keyboard. Child of a button that forwards
// its keys here.
import QtQuick
import QtQuick.Templates as T

Item {
    id: root

    required property T.AbstractButton button
    readonly property alias ring: ring

    z: 1
    anchors.fill: parent
    Keys.onReturnPressed: event => tapUnlessRepeated(event)
    Keys.onEnterPressed: event => tapUnlessRepeated(event)
    // The template handles Space: pressed while the key is down, clicked on its release.
    Keys.onSpacePressed: event => event.accepted = event.isAutoRepeat
    Keys.onReleased: event => event.accepted = event.key === Qt.Key_Space && (event.isAutoRepeat || !button.pressed)

    // A key that is held down is one tap, even if the press was meant for an earlier screen. On a busy machine Qt 6.4
    // does not recognise every repeat on X11.
    function tapUnlessRepeated(event: KeyEvent) {
        if (!event.isAutoRepeat)
            button.clicked();
    }

    Rectangle {
        id: ring
        anchors.fill: parent
        anchors.margins: -3
        visible: root.button.visualFocus
        color: "transparent"
        border.color: "#80ffffff"
        border.width: 2
    }
}
