// SPDX-License-Identifier: Apache-2.0
#include <vorna/qml/registerModule.h>

#include <QtQml/qqml.h>

// Made by the build; registers the types once it has been called, however often.
extern void qml_register_types_Vorna();  // NOLINT(readability-identifier-naming)

namespace vorna::qml {

void registerModule() {
    // The static object that Qt generates beside the function calls it for each import.
    volatile auto registration = &qml_register_types_Vorna;
    static_cast<void>(registration);
}

}  // namespace vorna::qml
