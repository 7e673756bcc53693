// SPDX-License-Identifier: Apache-2.0
// The products of a screen side by side. They share the row's width, down to a minimum; below that the row
// scrolls.
import QtQuick
import Vorna.Ui

ListView {
    id: root

    required property ProductRow row
    required property real itemHeight

    readonly property real itemWidth: Math.max(80, (width - (count - 1) * spacing) / Math.max(1, count))

    orientation: ListView.Horizontal
    spacing: 10
    // Tolerates rounding by half a pixel. A row that does not scroll is not clipped either, so that shadows may
    // extend beyond it.
    interactive: contentWidth > width + 0.5
    clip: interactive
    // ListView's own navigation moves the focus without setting visualFocus.
    keyNavigationEnabled: false
    Keys.onRightPressed: moveFocus(effectiveLayoutDirection === Qt.RightToLeft ? -1 : 1)
    Keys.onLeftPressed: moveFocus(effectiveLayoutDirection === Qt.RightToLeft ? 1 : -1)
    // Keeps every cell: they are few, and a new one would have to draw its shadow again.
    cacheBuffer: 100000
    model: row
    Accessible.role: Accessible.Grouping
    Accessible.name: "Products"

    // Moves the keyboard focus by that many cells; ignored if there is no such cell.
    function moveFocus(cells: int) {
        itemAtIndex(currentIndex + cells)?.forceActiveFocus(Qt.TabFocusReason);
    }

    // Scrolls towards the end of the row, or back if negative, without leaving it.
    function scroll(distance: real) {
        const offset = effectiveLayoutDirection === Qt.RightToLeft ? -distance : distance;
        contentX = Math.max(originX, Math.min(originX + contentWidth - width, contentX + offset));
    }

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

    // Most mice have only a vertical wheel.
    WheelHandler {
        enabled: root.interactive
        acceptedDevices: PointerDevice.Mouse | PointerDevice.TouchPad
        onWheel: event => root.scroll(-event.angleDelta.y / 2)
    }
}
