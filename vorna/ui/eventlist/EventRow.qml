// SPDX-License-Identifier: Apache-2.0
// One event on a single line, which scrolls sideways if it is wider than the row.
import QtQuick

Item {
    id: root

    required property string line

    height: 44
    // A new text is shown from its beginning, even if the row was scrolled.
    onLineChanged: {
        scroll.cancelFlick();
        scroll.contentX = 0;
    }
    ListView.onReused: scroll.contentX = 0
    Accessible.role: Accessible.ListItem
    Accessible.name: line

    Flickable {
        id: scroll
        objectName: "scrollView"
        anchors.fill: parent
        contentWidth: label.width + 20
        contentHeight: height
        flickableDirection: Flickable.HorizontalFlick
        interactive: contentWidth > width
        clip: true

        Text {
            id: label
            objectName: "label"
            x: 10
            height: root.height
            text: root.line
            textFormat: Text.PlainText
            color: "black"
            font.pixelSize: 17
            maximumLineCount: 1
            wrapMode: Text.NoWrap
            verticalAlignment: Text.AlignVCenter
        }
    }

    // Shows which part of the line is visible while it scrolls.
    Rectangle {
        objectName: "horizontalScrollIndicator"
        x: scroll.visibleArea.xPosition * root.width
        y: root.height - height - 3
        width: scroll.visibleArea.widthRatio * root.width
        height: 3
        radius: 1.5
        color: "#80000000"
        visible: scroll.interactive && scroll.moving
    }

    Rectangle {
        x: 16
        y: root.height - 1
        width: root.width - 16
        height: 1
        color: "#e5e5ea"
    }
}
