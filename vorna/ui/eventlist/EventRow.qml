// SPDX-License-Identifier: Apache-2.0
// One event on one line, which can be moved sideways when it is longer than the row is wide.
import QtQuick

Item {
    id: root

    required property string line

    height: 44
    // Another entry is shown from its beginning, wherever the one before had been moved to.
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

    // Tells how much of the line is in sight while it moves.
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
