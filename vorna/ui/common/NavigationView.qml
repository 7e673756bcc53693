// SPDX-License-Identifier: Apache-2.0
// A navigation bar with a title and a button at its leading edge, and below it the view of the top controller.
import QtQuick
import Vorna.Ui

Rectangle {
    id: root

    required property NavigationController controller
    readonly property Window window: controller.window

    color: "white"
    LayoutMirroring.enabled: Qt.application.layoutDirection === Qt.RightToLeft // qmllint disable
    LayoutMirroring.childrenInherit: true

    Rectangle {
        id: bar
        objectName: "navigationBar"
        width: parent.width
        height: root.window.safeAreaTop + 44
        color: "#f8f8f8"

        Text {
            objectName: "barTitle"
            anchors.horizontalCenter: parent.horizontalCenter
            anchors.bottom: parent.bottom
            height: 44
            text: root.controller.barTitle
            font.pixelSize: 17
            font.bold: true
            color: "black"
            verticalAlignment: Text.AlignVCenter
            Accessible.role: Accessible.Heading
            Accessible.name: text
        }

        TapButton {
            id: button
            objectName: "leftBarButton"
            anchors.left: parent.left
            anchors.leftMargin: root.window.safeAreaLeft
            anchors.bottom: parent.bottom
            height: 44
            implicitWidth: implicitContentWidth + leftPadding + rightPadding
            leftPadding: 16
            rightPadding: 16
            visible: text !== ""
            focus: true
            text: root.controller.leftBarButtonText
            font.pixelSize: 17
            font.bold: true
            opacity: down ? 0.4 : 1
            focusRing.anchors.margins: 5
            focusRing.border.color: "#007aff"
            focusRing.radius: 6
            onClicked: root.controller.leftBarButtonPressed()

            contentItem: Text {
                text: button.text
                font: button.font
                color: "#007aff"
                verticalAlignment: Text.AlignVCenter
            }
        }

        Rectangle {
            anchors.bottom: parent.bottom
            width: parent.width
            height: 1
            color: "#c6c6c8"
        }
    }

    Item {
        objectName: "content"
        anchors.top: bar.bottom
        anchors.bottom: parent.bottom
        width: parent.width
        clip: true
    }
}
