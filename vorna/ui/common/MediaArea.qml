// SPDX-License-Identifier: Apache-2.0
// The media at the top of a screen: nothing, a picture as wide as the screen, or a video that plays in a loop.
//
// A picture gives the area its height. Nothing says how high the area of a video is: it then reaches down to
// where the screen says that there is room to, and the video keeps the frame that the area had when it began.
import QtQuick
import Vorna.Ui

Item {
    id: root

    required property MediaLoader media
    // Logical pixels of the main screen's width, which the height of a picture follows.
    required property real screenWidth
    // How high the area is while nothing else says so.
    required property real freeHeight

    readonly property bool isPicture: media.imageSize.width > 0

    height: isPicture ? screenWidth * media.imageSize.height / media.imageSize.width : Math.max(0, freeHeight)
    clip: true

    ImageLayer {
        objectName: "mediaImage"
        anchors.fill: parent
        visible: root.isPicture
        image: root.media.image // qmllint disable
        Accessible.ignored: true
    }

    Loader {
        id: video
        objectName: "mediaVideo"
        // Loading the player takes time and memory that a picture does not need.
        active: String(root.media.video) !== ""
        source: active ? "MediaVideo.qml" : ""
        onActiveChanged: {
            width = root.width;
            height = root.height;
        }
        // Its type is known only once it has been loaded.
        onLoaded: item.play(root.media) // qmllint disable
    }
}
