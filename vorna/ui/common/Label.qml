// A text of as many lines as it needs, centred, never wider than its screen.
import QtQuick

Text {
    id: root

    anchors.horizontalCenter: parent.horizontalCenter
    width: Math.min(implicitWidth, parent.width - 32)
    textFormat: Text.PlainText
    horizontalAlignment: Text.AlignHCenter
    wrapMode: Text.Wrap
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
