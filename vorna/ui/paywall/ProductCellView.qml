// SPDX-License-Identifier: Apache-2.0
// One product: a card with title, description and price, a tag at the bottom and a badge on the top edge.
import QtQuick
import QtQuick.Templates as T
import Vorna.Ui

// Not a TapButton: Qt 6.4 reports the template's role and state to assistive technology, regardless of any
// set here.
T.RadioButton {
    id: root

    required property int index
    required property ProductCell cell
    // How far the shadow may extend beyond the card.
    readonly property real shadowReach: 24

    text: cell.look.titleText
    checked: cell.isSelected
    Accessible.role: Accessible.RadioButton
    Accessible.name: [cell.look.titleText, cell.look.isDescriptionShown ? cell.look.descriptionText : "", cell.look.priceText, cell.look.isTagShown ? cell.look.tagText : "", cell.look.isBadgeShown ? cell.look.badgeText : ""].filter(text => text !== "").join(", ") // qmllint disable
    Accessible.checkable: true
    Accessible.checked: checked
    Accessible.onPressAction: clicked()
    Accessible.onToggleAction: clicked()
    Keys.forwardTo: [input]

    CardShadow {
        x: container.x - root.shadowReach
        y: container.y - root.shadowReach + root.cell.look.shadowOffset
        width: container.width + 2 * root.shadowReach
        height: container.height + 2 * root.shadowReach
        margin: root.shadowReach
        color: root.cell.look.shadowColor
        strength: root.cell.look.shadowOpacity
        blurRadius: root.cell.look.shadowRadius / 2
        cornerRadius: container.radius
    }

    Rectangle {
        id: container
        objectName: "containerView"
        anchors.fill: parent
        anchors.topMargin: 15
        anchors.bottomMargin: 15
        radius: 18
        color: root.cell.look.background
        border.color: root.cell.look.borderColor
        border.width: root.cell.look.borderWidth
        antialiasing: true

        // Clips the texts but not the card's border.
        Item {
            anchors.fill: parent
            clip: true

            Text {
                id: title
                objectName: "titleLabel"
                anchors.horizontalCenter: parent.horizontalCenter
                y: 10
                width: Math.min(implicitWidth, parent.width - 8)
                text: root.cell.look.titleText
                textFormat: Text.PlainText
                color: root.cell.look.titleColor
                font.pixelSize: 16
                font.bold: true
                horizontalAlignment: Text.AlignHCenter
                elide: Text.ElideRight
            }

            Text {
                id: description
                objectName: "descriptionLabel"
                anchors.horizontalCenter: parent.horizontalCenter
                anchors.top: title.bottom
                anchors.topMargin: root.cell.look.spacingAfterTitle
                width: Math.min(implicitWidth, parent.width - 8)
                visible: root.cell.look.isDescriptionShown
                text: root.cell.look.descriptionText
                textFormat: Text.PlainText
                color: root.cell.look.descriptionColor
                font.pixelSize: 9
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.WordWrap
            }

            Text {
                id: price
                objectName: "priceLabel"
                anchors.horizontalCenter: parent.horizontalCenter
                anchors.top: root.cell.look.isDescriptionShown ? description.bottom : title.bottom
                anchors.topMargin: root.cell.look.isDescriptionShown ? root.cell.look.spacingAfterDescription : root.cell.look.spacingAfterTitle
                width: Math.min(implicitWidth, parent.width - 8)
                text: root.cell.look.priceText
                textFormat: Text.PlainText
                color: root.cell.look.priceColor
                font.pixelSize: 16
                font.bold: true
                horizontalAlignment: Text.AlignHCenter
                elide: Text.ElideRight
            }

            Rectangle {
                objectName: "tagContainerView"
                anchors.horizontalCenter: parent.horizontalCenter
                anchors.bottom: parent.bottom
                anchors.bottomMargin: 10
                width: price.width
                height: Math.max(20, tag.implicitHeight + 8)
                visible: root.cell.look.isTagShown
                radius: 6
                color: root.cell.look.tagBackground
                antialiasing: true
                clip: true

                Text {
                    id: tag
                    objectName: "tagPeriodLabel"
                    anchors.fill: parent
                    anchors.margins: 4
                    text: root.cell.look.tagText
                    textFormat: Text.PlainText
                    color: root.cell.look.tagTextColor
                    font.pixelSize: 12
                    font.bold: true
                    horizontalAlignment: Text.AlignHCenter
                    verticalAlignment: Text.AlignVCenter
                    wrapMode: Text.WordWrap
                }
            }
        }
    }

    Rectangle {
        objectName: "badgeContainerView"
        anchors.horizontalCenter: parent.horizontalCenter
        width: 80
        height: 25
        visible: root.cell.look.isBadgeShown
        radius: 12
        color: root.cell.look.badgeBackground
        antialiasing: true

        Text {
            objectName: "badgeLabel"
            anchors.centerIn: parent
            width: Math.min(implicitWidth, parent.width - 6)
            text: root.cell.look.badgeText
            textFormat: Text.PlainText
            color: root.cell.look.badgeTextColor
            font.pixelSize: 12
            font.bold: true
            horizontalAlignment: Text.AlignHCenter
            elide: Text.ElideRight
        }
    }

    TapInput {
        id: input
        button: root
        anchors.fill: container
        ring.radius: container.radius + 3
    }
}
