#pragma once

namespace vorna::qml {

/// Makes `import Vorna` work in every engine of this process. A host that links `Vorna::Qml` calls it once,
/// before it loads any QML; one that finds the installed module on its import path need not. Main thread.
[[gnu::visibility("default")]] void registerModule();

}  // namespace vorna::qml
