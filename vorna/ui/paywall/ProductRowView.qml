// SPDX-License-Identifier: Apache-2.0
// The products of a screen side by side. They share the row's width; where that would make them too narrow,
// the row scrolls.
import QtQuick
import Vorna.Ui

ListView {
    id: root

    required property ProductRow row
    required property real itemHeight

    readonly property real itemWidth: Math.max(80, (width - (count - 1) * spacing) / Math.max(1, count))

    // Gives the keyboard's focus to the cell so many places further on, where there is one.
    function moveFocus(places: int) {
        itemAtIndex(currentIndex + places)?.forceActiveFocus(Qt.TabFocusReason);
    }

    // Scrolls by so many pixels towards the end of the row, no further than there is something to see.
    function scroll(distance: real) {
        const way = effectiveLayoutDirection === Qt.RightToLeft ? -distance : distance;
        contentX = Math.max(originX, Math.min(originX + contentWidth - width, contentX + way));
    }

    orientation: ListView.Horizontal
    spacing: 10
    // Half a pixel is no reason to scroll, and where nothing scrolls, shadows may reach out of the row.
    interactive: contentWidth > width + 0.5
    clip: interactive
    // The list's own moves the focus without showing where it is.
    keyNavigationEnabled: false
    Keys.onRightPressed: moveFocus(effectiveLayoutDirection === Qt.RightToLeft ? -1 : 1)
    Keys.onLeftPressed: moveFocus(effectiveLayoutDirection === Qt.RightToLeft ? 1 : -1)
    // Cells are cheap to keep, and one that is kept remembers its shadow.
    cacheBuffer: 100000
    model: row
    Accessible.role: Accessible.Grouping
    Accessible.name: "Products"

    // qmllint disable unqualified
    delegate: ProductCellView {
        objectName: "productCell"
        width: root.itemWidth
        height: root.itemHeight
        y: (root.height - root.itemHeight) / 2
        onClicked: root.row.cellTapped(index)
        onActiveFocusChanged: {
            if (activeFocus) {
                root.currentIndex = index;
                root.positionViewAtIndex(index, ListView.Contain);
            }
        }
    }
    // qmllint enable unqualified

    // Most mice have but a vertical wheel.
    WheelHandler {
        enabled: root.interactive
        acceptedDevices: PointerDevice.Mouse | PointerDevice.TouchPad
        onWheel: event => root.scroll(-event.angleDelta.y / 2)
    }
}
