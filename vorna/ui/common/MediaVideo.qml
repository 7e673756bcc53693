// SPDX-License-Identifier: Apache-2.0
// A video that plays in an endless loop, with sound.
import QtQuick
import QtMultimedia
import Vorna.Ui

Item {
    id: root

    readonly property alias player: player
    // Qt's software renderer does not draw VideoOutput.
    readonly property bool drawsFrames: GraphicsInfo.api === GraphicsInfo.Software

    function play(media: MediaLoader) {
        if (devices.defaultAudioOutput.description === "")
            media.reportSilence();
        else
            player.audioOutput = speaker.createObject(root);
        player.source = media.video;
        player.play();
    }

    MediaDevices {
        id: devices
    }

    Component {
        id: speaker
        AudioOutput {}
    }

    MediaPlayer {
        id: player
        loops: MediaPlayer.Infinite
        videoOutput: root.drawsFrames ? frames : output
        // The FFmpeg backend of Qt 6.4 ignores `loops`, and cannot be restarted from within this signal.
        onMediaStatusChanged: {
            if (mediaStatus === MediaPlayer.EndOfMedia)
                restart.start();
        }
    }

    Timer {
        id: restart
        interval: 0
        onTriggered: player.play()
    }

    VideoOutput {
        id: output
        anchors.fill: parent
        visible: !root.drawsFrames
        fillMode: VideoOutput.PreserveAspectFit
    }

    FrameLayer {
        id: frames
        objectName: "frames"
        anchors.fill: parent
        visible: root.drawsFrames
        Accessible.ignored: true
    }
}
