// SPDX-License-Identifier: Apache-2.0
// Operates the application in examples/qml-app as a user would, and exits with 0 if all went well.
import QtQuick
import QtTest
import Vorna
import "../../examples/qml-app"

Item {
    id: root

    property int step: 0
    property point lastPlace
    property int eventListUpdates: 0

    readonly property Main application: Main {}
    readonly property TestEvent pointer: TestEvent {}

    readonly property Connections observer: Connections {
        target: VornaCoreSDK

        function onEventListUpdated() {
            ++root.eventListUpdates
        }
    }

    readonly property Timer patience: Timer {
        running: true
        interval: 45000
        onTriggered: root.end(1, "step " + root.step + " takes too long")
    }

    readonly property Timer watch: Timer {
        running: true
        repeat: true
        interval: 100
        onTriggered: root.advance()
    }

    function end(code: int, why: string) {
        console.log(why)
        root.watch.stop()
        Qt.exit(code)
    }

    function find(below: Item, name: string): Item {
        if (below.objectName === name) {
            return below
        }
        for (let index = 0; index < below.children.length; ++index) {
            const found = root.find(below.children[index], name)
            if (found) {
                return found
            }
        }
        return null
    }

    /// Clicks the item once it is there and not moving. Returns whether it has been clicked.
    function clicked(name: string): bool {
        const item = root.find(root.application.contentItem, name)
        if (!item || item.width === 0) {
            return false
        }
        const place = item.mapToItem(null, item.width / 2, item.height / 2)
        if (place !== root.lastPlace) {
            root.lastPlace = place
            return false
        }
        return root.pointer.mouseClick(item, item.width / 2, item.height / 2, Qt.LeftButton, Qt.NoModifier, -1)
    }

    function advance() {
        const log = root.application.log
        if (root.step === 0 && log.includes("remoteConfigsReady true") && root.clicked("showOnboarding")) {
            root.step = 1
        } else if (root.step === 1 && root.clicked("actionButton")) {
            root.step = 2
        } else if (root.step === 2 && log.includes("onboardingScreensFinished \"\"")) {
            root.step = 3
        } else if (root.step === 3 && !root.find(root.application.contentItem, "actionButton")
                   && root.eventListUpdates >= 4) {
            // The requests follow immediately; give them a moment to complete.
            root.step = 4
        } else if (root.step >= 4 && ++root.step > 14) {
            const text = root.find(root.application.contentItem, "welcome").text
            const isAsExpected = text === "Hoş geldin! 👋" && VornaCoreSDK.GetAppID() === "vorna-qml"
                && VornaCoreSDK.GetAdid() === undefined && VornaCoreSDK.GetInstallTime() > 1700000000
            root.end(isAsExpected ? 0 : 1, text)
        }
    }
}
