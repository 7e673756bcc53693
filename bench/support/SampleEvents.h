// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Typical events: operations of the catalogue and names of a host's own, some with short or long custom
/// values.

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

/// Repeats after a few dozen.
SampleEvent sampleEvent(std::size_t index);

/// Records sample event `index` through the facade.
void recordSample(std::size_t index);

/// Options as a real host sets them. Data is kept in the folder, without a keyring.
PlatformOptions sampleOptions(const std::string& dataDirectory);

}  // namespace vorna::bench
