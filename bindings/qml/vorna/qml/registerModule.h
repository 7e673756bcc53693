// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vorna/base/Export.h>

namespace vorna::qml {

/// Registers the module `Vorna` for every engine in this process. A host that links `Vorna::Qml` calls it
/// once, on the main thread, before loading any QML; it is not needed with the installed module on the import
/// path.
VORNA_EXPORT void registerModule();

}  // namespace vorna::qml
