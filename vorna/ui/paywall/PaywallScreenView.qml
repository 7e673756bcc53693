// SPDX-License-Identifier: Apache-2.0
// A paywall: media, heading, details, products, the purchase button, a footnote and links.
import QtQuick
import Vorna.Ui

Rectangle {
    id: root

    required property PaywallScreenViewController controller
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
        freeHeight: heading.y - y - 12
    }

    Label {
        id: heading
        objectName: "headingLabel"
        screenWidth: root.width
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.verticalCenter: parent.verticalCenter
        anchors.verticalCenterOffset: root.screenHeight * (root.screenHeight <= 667 ? -0.12 : -0.1)
        text: root.controller.look.headingText
        color: root.controller.look.headingColor
        font.pixelSize: 30
        font.bold: true
    }

    Column {
        objectName: "detailsStackView"
        anchors.top: heading.bottom
        anchors.topMargin: root.screenHeight > 667 ? 30 : 15
        anchors.horizontalCenter: parent.horizontalCenter
        width: parent.width
        spacing: root.screenHeight > 667 ? 12 : 8

        Repeater {
            model: root.controller.look.details

            // qmllint disable unqualified
            Item {
                id: line

                required property string modelData

                width: root.width
                height: detail.height

                Label {
                    id: detail
                    objectName: "detailLabel"
                    screenWidth: root.width
                    anchors.horizontalCenter: parent.horizontalCenter
                    text: line.modelData
                    color: root.controller.look.detailsColor
                    font.pixelSize: 16
                }
            }
            // qmllint enable unqualified
        }
    }

    ActionButton {
        id: actionButton
        objectName: "actionButton"
        anchors.bottom: parent.bottom
        anchors.bottomMargin: root.window.safeAreaBottom + (root.screenHeight <= 667 ? 60 : 40)
        anchors.horizontalCenter: parent.horizontalCenter
        width: 350
        height: root.screenHeight > 736 ? 70 : 50
        text: root.controller.look.buttonTitle
        titleColor: root.controller.look.buttonTitleColor
        firstColor: root.controller.look.actionButtonColor1
        secondColor: root.controller.look.actionButtonColor2
        showsArrow: true
        arrowTrailing: 20
        focus: true
        onClicked: root.controller.buttonTapped()
    }

    ProductRowView {
        objectName: "collectionView"
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.bottom: actionButton.top
        anchors.bottomMargin: -5
        width: parent.width * 0.9
        height: root.screenHeight > 667 ? 190 : 160
        // Medium screens have shorter items than small ones, by design.
        itemHeight: root.screenHeight > 736 ? 178 : root.screenHeight > 667 ? 150 : 160
        row: root.controller.productRow
    }

    Label {
        id: footNote
        objectName: "footnoteLabel"
        screenWidth: root.width
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.top: actionButton.bottom
        anchors.topMargin: 10
        text: root.controller.look.footNote
        color: root.controller.look.footNoteColor
        font.pixelSize: 12
    }

    Row {
        objectName: "footerStackView"
        anchors.top: footNote.bottom
        anchors.topMargin: root.screenHeight > 736 ? 5 : root.screenHeight > 667 ? 50 : 10
        anchors.horizontalCenter: parent.horizontalCenter
        spacing: 35

        LinkButton {
            objectName: "termsOfUseButton"
            text: "Terms of Use"
            titleColor: root.controller.look.termsOfUseColor
            Accessible.role: Accessible.Link
            onClicked: root.controller.linkButtonTapped(text)
        }

        LinkButton {
            objectName: "restoreButton"
            text: "Restore Purchase"
            titleColor: root.controller.look.restoreButtonColor
            onClicked: root.controller.restorePurchaseTapped()
        }

        LinkButton {
            objectName: "privacyPolicyButton"
            text: "Privacy Policy"
            titleColor: root.controller.look.privacyPolicyColor
            Accessible.role: Accessible.Link
            onClicked: root.controller.linkButtonTapped(text)
        }
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
            font.pixelSize: 24
            font.bold: true
            onClicked: root.controller.exitTapped()
        }
        // qmllint enable unqualified
    }
}
