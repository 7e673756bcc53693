// SPDX-License-Identifier: Apache-2.0
// The window beside the device: device, findings, notifications and keys.
import QtQuick
import VornaPreview

Window {
    id: root

    required property Board board

    title: board.document + ": findings"
    width: 440
    height: 700
    color: board.isDark ? "#16181d" : "#ffffff"
    palette.windowText: board.isDark ? "#e8eaf0" : "#1d2026"
    palette.placeholderText: board.isDark ? "#9aa0ad" : "#5f6571"

    component Caption: Text {
        id: caption
        color: caption.palette.placeholderText
        font.pixelSize: 12
        textFormat: Text.PlainText
        width: parent.width
        wrapMode: Text.Wrap
    }

    Column {
        id: head
        anchors.top: parent.top
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.margins: 16
        spacing: 4

        Text {
            width: parent.width
            text: root.board.document
            textFormat: Text.PlainText
            color: root.palette.windowText
            font.pixelSize: 18
            font.bold: true
            elide: Text.ElideMiddle
        }

        Caption {
            text: root.board.device
        }

        Caption {
            text: root.board.status
        }

        Caption {
            topPadding: 12
            text: root.board.findingsCount === 0 ? "No findings" : root.board.findingsCount === 1 ? "1 finding" : root.board.findingsCount + " findings"
        }
    }

    ListView {
        objectName: "findings"
        anchors.top: head.bottom
        anchors.left: head.left
        anchors.right: head.right
        anchors.bottom: foot.top
        anchors.topMargin: 8
        anchors.bottomMargin: 12
        clip: true
        spacing: 8
        model: root.board.findings

        delegate: Column {
            id: row

            required property string severity
            required property string path
            required property string place
            required property string message

            width: ListView.view.width

            Item {
                width: parent.width
                height: where.height

                Text {
                    id: where
                    width: parent.width - spot.width - 8
                    text: row.severity + (row.path === "" ? "" : "  " + row.path)
                    textFormat: Text.PlainText
                    color: row.severity === "error" ? "#e0483e" : "#b27600"
                    font.pixelSize: 13
                    font.bold: true
                    elide: Text.ElideMiddle
                }

                Text {
                    id: spot
                    anchors.right: parent.right
                    text: row.place
                    color: row.palette.placeholderText
                    font.pixelSize: 13
                }
            }

            Text {
                width: parent.width
                text: row.message
                textFormat: Text.PlainText
                color: row.palette.windowText
                font.pixelSize: 13
                wrapMode: Text.Wrap
            }
        }
    }

    Column {
        id: foot
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        anchors.margins: 16
        spacing: 8

        Caption {
            text: "Notifications posted by the library"
        }

        ListView {
            objectName: "posted"
            width: parent.width
            height: 96
            clip: true
            model: root.board.posted

            delegate: Text {
                id: line

                required property string modelData

                width: ListView.view.width
                text: modelData
                textFormat: Text.PlainText
                color: line.palette.windowText
                font.pixelSize: 11
                wrapMode: Text.Wrap
            }
        }

        Caption {
            text: "N, P: next, previous device   S: safe area   D: dark, light\nR: reload   O: restart the onboarding   Q: quit"
        }
    }
}
