// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Events as an application records them: the operations of the catalogue and names of a host's own, some
/// with custom values, short and long.

#include <vorna/platform/Platform.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace vorna::bench {

struct SampleEvent {
    std::string_view name;
    std::optional<std::string_view> customValue;
};

/// They repeat after a few dozen.
SampleEvent sampleEvent(std::size_t index);

/// Records it through the facade.
void recordSample(std::size_t index);

/// Options with everything filled in that a real host fills in. Data is kept in the folder, without a
/// keyring.
PlatformOptions sampleOptions(const std::string& dataDirectory);

}  // namespace vorna::bench
