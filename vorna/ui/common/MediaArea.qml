// SPDX-License-Identifier: Apache-2.0
// The media at the top of a screen: nothing, a picture as wide as the screen, or a looping video.
//
// A picture determines the area's height. A video does not: the area then fills the free height, and the video
// keeps the size that the area had when playback started.
import QtQuick
import Vorna.Ui

Item {
    id: root

    required property MediaLoader media
    // Width to which a picture is scaled.
    required property real screenWidth
    // Height of the area without a picture.
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
        // The player takes time and memory that a picture does not need.
        active: String(root.media.video) !== ""
        source: active ? "MediaVideo.qml" : ""
        onActiveChanged: {
            width = root.width;
            height = root.height;
        }
        // The item's type is not known until it is loaded.
        onLoaded: item.play(root.media) // qmllint disable
    }
}
