// SPDX-License-Identifier: Apache-2.0
// A basic onboarding step: media, title, heading, dots and a button, from top to bottom.
import QtQuick
import Vorna.Ui

Rectangle {
    id: root

    required property OnboardingBasicScreenViewController controller
    readonly property Window window: controller.window
    readonly property real screenHeight: window.screenHeight

    color: controller.look.backgroundColor
    LayoutMirroring.enabled: Qt.application.layoutDirection === Qt.RightToLeft // qmllint disable
    LayoutMirroring.childrenInherit: true

    MediaArea {
        objectName: "mediaView"
        y: 40 - root.controller.firstWindowSafeAreaTop
        width: parent.width
        media: root.controller.media
        screenWidth: root.window.screenWidth
        freeHeight: title.y - y - 12
    }

    Label {
        id: title
        objectName: "titleLabel"
        screenWidth: root.width
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.verticalCenter: parent.verticalCenter
        anchors.verticalCenterOffset: root.screenHeight < 700 ? -40 : 0
        text: root.controller.look.titleText
        color: root.controller.look.headingColor
        font.pixelSize: 30
        font.bold: true
    }

    Label {
        id: heading
        objectName: "headingLabel"
        screenWidth: root.width
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.top: title.bottom
        anchors.topMargin: 12
        text: root.controller.look.headingText
        color: root.controller.look.headingColor
        font.pixelSize: 16
        font.bold: true
    }

    StepDots {
        objectName: "stepIndicatorStackView"
        anchors.top: heading.bottom
        anchors.topMargin: 4
        anchors.horizontalCenter: parent.horizontalCenter
        stepIndex: root.controller.look.stepIndex
        stepCount: root.controller.look.stepCount
    }

    ActionButton {
        objectName: "actionButton"
        anchors.bottom: parent.bottom
        anchors.bottomMargin: root.screenHeight <= 667 ? 60 : 40
        anchors.horizontalCenter: parent.horizontalCenter
        width: 350
        height: root.screenHeight > 736 ? 70 : 50
        text: root.controller.look.buttonTitle
        titleColor: root.controller.look.buttonTitleColor
        firstColor: root.controller.look.actionButtonColor1
        secondColor: root.controller.look.actionButtonColor2
        showsArrow: root.controller.look.showsArrow
        focus: true
        onClicked: root.controller.actionButtonTapped()
    }

    Loader {
        active: root.controller.isExitButtonShown
        // qmllint disable unqualified
        sourceComponent: CloseButton {
            objectName: "exitButton"
            parent: root
            glyphTop: root.window.safeAreaTop + 10
            glyphLeft: 10
            glyphColor: root.controller.look.exitButtonColor
            font.pixelSize: 18
            onClicked: root.controller.exitButtonTapped()
        }
        // qmllint enable unqualified
    }
}
