// SPDX-License-Identifier: Apache-2.0
// Shows which control the keyboard reaches.
import QtQuick

Rectangle {
    id: root

    required property bool shown

    anchors.fill: parent
    anchors.margins: -3
    visible: shown
    color: "transparent"
    border.color: "#80ffffff"
    border.width: 2
}
