// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vorna/base/Export.h>

namespace vorna::qml {

/// Makes `import Vorna` work in every engine of this process. A host that links `Vorna::Qml` calls it once,
/// before it loads any QML; one that finds the installed module on its import path need not. Main thread.
VORNA_EXPORT void registerModule();

}  // namespace vorna::qml
