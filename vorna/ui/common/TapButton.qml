// SPDX-License-Identifier: Apache-2.0
// The base of the buttons: a press by mouse, touch, key or assistive technology becomes `clicked`.
import QtQuick
import QtQuick.Templates as T
import Vorna.Ui

T.AbstractButton {
    id: root

    property alias focusRing: input.ring

    Accessible.role: Accessible.Button
    Accessible.name: text
    Accessible.onPressAction: clicked()
    Keys.forwardTo: [input]

    TapInput {
        id: input
        button: root
    }
}
