// One dot for each step of a sequence; the present one is opaque.
import QtQuick
import Vorna.Ui

Row {
    id: root

    required property int stepIndex
    required property int stepCount

    spacing: 8
    Accessible.role: Accessible.Indicator
    Accessible.name: "Step " + (stepIndex + 1) + " of " + stepCount

    Repeater {
        model: Math.max(0, root.stepCount)

        Rectangle {
            required property int index

            width: 5
            height: 5
            radius: 4
            color: index === root.stepIndex ? "#ffffffff" : "#80ffffff"
            antialiasing: true
        }
    }
}
