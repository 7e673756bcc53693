// The products of a screen side by side. They share the row's width; where that would make them too narrow,
// the row scrolls.
import QtQuick
import Vorna.Ui

ListView {
    id: root

    required property ProductRow row
    required property real itemHeight

    readonly property real itemWidth: Math.max(80, (width - (count - 1) * spacing) / Math.max(1, count))

    orientation: ListView.Horizontal
    spacing: 10
    // Half a pixel is no reason to scroll, and where nothing scrolls, shadows may reach out of the row.
    interactive: contentWidth > width + 0.5
    clip: interactive
    keyNavigationEnabled: true
    // Cells are cheap to keep, and one that is kept remembers its shadow.
    cacheBuffer: 100000
    model: row
    Accessible.role: Accessible.Grouping
    Accessible.name: "Products"

    delegate: ProductCellView {
        objectName: "productCell"
        width: root.itemWidth
        height: root.itemHeight
        y: (root.height - root.itemHeight) / 2
        onClicked: root.row.cellTapped(index)
        onActiveFocusChanged: {
            if (activeFocus)
                root.positionViewAtIndex(index, ListView.Contain);
        }
    }
}
