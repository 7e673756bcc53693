// SPDX-License-Identifier: Apache-2.0
// The events of the current run, one row each.
import QtQuick
import Vorna.Ui

Rectangle {
    id: root

    required property EventListViewController controller

    color: "white"

    ListView {
        objectName: "tableView"
        anchors.fill: parent
        model: root.controller.tableView
        reuseItems: true
        boundsBehavior: Flickable.StopAtBounds
        activeFocusOnTab: true
        keyNavigationEnabled: true
        Accessible.role: Accessible.List
        Accessible.name: "Event List"

        delegate: EventRow {
            objectName: "eventRow"
            width: ListView.view.width
        }
    }
}
