// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A task for the worker: an event to send or a configuration to fetch.

#include <vorna/config/RemoteConfigData.h>
#include <vorna/events/EventData.h>

#include <cstdint>
#include <variant>

namespace vorna {

enum class VornaTaskTypes : std::uint8_t { event = 0, remoteConfig = 1 };

struct VornaTask {
    VornaTaskTypes type = VornaTaskTypes::event;
    /// An EventData for an event, a RemoteConfigData for a remoteConfig. Anything else is a programming error
    /// and fatal in the worker.
    std::variant<std::monostate, EventData, RemoteConfigData> data;
};

}  // namespace vorna
