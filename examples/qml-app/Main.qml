// SPDX-License-Identifier: Apache-2.0
// A pure QML application. Run it with the qml program and the import path of the built or installed module:
//
//     qml -I build/dev/bindings/qml/qml examples/qml-app/Main.qml -- --service URL --ca FILE --data DIR
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Window
import Vorna

Window {
    id: root

    /// The notifications of the library, one per line, newest last.
    property string log

    readonly property var words: Qt.application.arguments

    readonly property string onboarding: JSON.stringify([
        {
            "type": "basic",
            "media": root.argument("service", "https://127.0.0.1:8443") + "/media/mountains.jpg",
            "title": "Welcome",
            "titleColor": "#FFFFFF",
            "heading": "A pure QML application.",
            "headingColor": "#FFFFFF",
            "buttonTitle": "Let's go",
            "buttonTitleColor": "#FFFFFF",
            "backgroundColor": "#0B1026",
            "actionButtonColor1": "#5B6CFF",
            "actionButtonColor2": "#8E4FF0"
        }
    ])

    /// The value after "--name" on the command line.
    function argument(name: string, otherwise: string): string {
        const place = root.words.indexOf("--" + name)
        return place >= 0 && place + 1 < root.words.length ? root.words[place + 1] : otherwise
    }

    function report(line: string) {
        console.log(line)
        root.log += line + "\n"
    }

    function showOnboarding() {
        VornaCoreSDK.OnboardingStart()
        VornaCoreSDK.ShowOnboardingWithJsonString(root.onboarding)
    }

    width: 390
    height: 844
    visible: true
    title: "Vorna in QML"
    color: "#1b1b3a"

    Component.onCompleted: {
        VornaCoreSDK.debug = root.words.includes("--debug")
        VornaCoreSDK.UsePlatformWithOptions({
            "serviceURL": root.argument("service", ""),
            "certificateAuthorityFile": root.argument("ca", ""),
            "dataDirectory": root.argument("data", ""),
            "bundleIdentifier": "com.example.vorna-qml",
            "credentialStore": "file"
        })
        VornaCoreSDK.Attach(root)
        VornaCoreSDK.InitWithAppID("vorna-qml")
        VornaCoreSDK.EventWithNameCustomValue("qml_started", "ana ekran 🎉")
    }

    Connections {
        target: VornaCoreSDK

        function onRemoteConfigsReady(remoteConfigFetched: bool) {
            const text = VornaCoreSDK.GetRemoteConfigWithKeyDefaultValue("welcome_text", "Welcome")
            welcome.text = text
            root.report("remoteConfigsReady " + remoteConfigFetched)
        }

        function onOnboardingScreensFinished(identifier: string) {
            root.report("onboardingScreensFinished \"" + identifier + "\"")
            VornaCoreSDK.OnboardingFinish()
            VornaCoreSDK.CloseOnboarding()
        }

        function onOnboardingScreenClosed(success: bool) {
            root.report("onboardingScreenClosed " + success)
            VornaCoreSDK.CloseOnboarding()
        }
    }

    Column {
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.margins: 24
        spacing: 16

        Text {
            id: welcome
            objectName: "welcome"
            width: parent.width
            text: "Welcome"
            textFormat: Text.PlainText
            color: "white"
            font.pixelSize: 28
            wrapMode: Text.Wrap
        }

        Rectangle {
            objectName: "showOnboarding"
            width: parent.width
            height: 48
            radius: 12
            color: "#5B6CFF"
            Accessible.role: Accessible.Button
            Accessible.name: "Onboarding"
            Accessible.onPressAction: root.showOnboarding()

            Text {
                anchors.centerIn: parent
                text: "Onboarding"
                color: "white"
                font.pixelSize: 16
            }

            TapHandler {
                onTapped: root.showOnboarding()
            }
        }

        Text {
            width: parent.width
            text: root.log
            textFormat: Text.PlainText
            color: "#b9b7e0"
            font.pixelSize: 13
            wrapMode: Text.Wrap
        }
    }
}
