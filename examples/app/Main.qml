// SPDX-License-Identifier: Apache-2.0
// The start page: calls the library, and shows its notifications.
import QtQuick
import QtQuick.Controls.Basic
import VornaApp

ApplicationWindow {
    id: root

    required property Host host

    visible: true
    title: "Vorna example"
    color: "#1b1b3a"

    Column {
        id: actions
        anchors.top: parent.top
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.margins: 24
        anchors.topMargin: 64
        spacing: 12

        Text {
            width: parent.width
            text: root.host.welcomeText
            color: "white"
            font.pixelSize: 28
            font.bold: true
            wrapMode: Text.Wrap
        }

        Text {
            width: parent.width
            bottomPadding: 8
            text: "An application that embeds VornaCoreSDK"
            color: "#b9b7e0"
            font.pixelSize: 14
        }

        ActionRow {
            objectName: "recordEvent"
            text: "Record an event"
            onClicked: root.host.recordEvent()
        }

        ActionRow {
            objectName: "showOnboarding"
            text: "Onboarding"
            onClicked: root.host.showOnboarding("turkish")
        }

        ActionRow {
            objectName: "showPaywall"
            text: "Paywall"
            onClicked: root.host.showPaywall("three-products")
        }

        ActionRow {
            objectName: "showVideoPaywall"
            text: "Paywall with a video"
            onClicked: root.host.showPaywall("video")
        }

        ActionRow {
            objectName: "showOverlay"
            text: "Purchase overlay"
            onClicked: root.host.pretendToBuy()
        }

        ActionRow {
            objectName: "showEventList"
            text: "Events of this run"
            onClicked: root.host.showEventList()
        }

        ActionRow {
            objectName: "showIncomplete"
            text: "Incomplete document"
            onClicked: root.host.showOnboarding("bad-missing-heading")
        }
    }

    Text {
        id: configuration
        objectName: "configuration"
        anchors.top: actions.bottom
        anchors.left: actions.left
        anchors.right: actions.right
        anchors.topMargin: 16
        text: "Remote configuration\n" + root.host.configuration.join("\n")
        textFormat: Text.PlainText
        color: "#b9b7e0"
        font.pixelSize: 13
        wrapMode: Text.Wrap
    }

    Text {
        id: caption
        anchors.top: configuration.bottom
        anchors.left: actions.left
        anchors.topMargin: 16
        text: "Notifications of the library"
        color: "#b9b7e0"
        font.pixelSize: 13
    }

    ListView {
        anchors.top: caption.bottom
        anchors.left: actions.left
        anchors.right: actions.right
        anchors.bottom: parent.bottom
        anchors.topMargin: 6
        clip: true
        model: root.host.log

        delegate: Text {
            required property string modelData

            width: ListView.view.width
            text: modelData
            textFormat: Text.PlainText
            color: "#e6e5ff"
            font.pixelSize: 11
            font.family: "monospace"
            wrapMode: Text.Wrap
        }
    }
}
