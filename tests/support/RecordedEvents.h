// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The facade on a platform of fakes, before `Init`: recorded events stay in the queue, where a test can
/// inspect them.

#include <tests/support/CountingRandomSource.h>
#include <tests/support/FixedSystem.h>
#include <tests/support/InMemoryCredentialStore.h>
#include <tests/support/InMemoryPreferences.h>
#include <tests/support/RecordingHttpClient.h>
#include <tests/support/SettableClock.h>

#include <vorna/core/SharedInstance.h>
#include <vorna/core/VornaCoreSDK.h>
#include <vorna/events/EventData.h>

#include <memory>
#include <optional>
#include <utility>
#include <variant>
#include <vector>

namespace vorna::support {

/// Create one at the start of a test, before using the facade. The fakes are public.
struct RecordedEvents {
    std::shared_ptr<SettableClock> clock = std::make_shared<SettableClock>();
    std::shared_ptr<FixedSystem> system = std::make_shared<FixedSystem>();
    std::shared_ptr<RecordingHttpClient> http = std::make_shared<RecordingHttpClient>();
    std::shared_ptr<InMemoryCredentialStore> credentials = std::make_shared<InMemoryCredentialStore>();
    std::shared_ptr<InMemoryPreferences> preferences = std::make_shared<InMemoryPreferences>();

    RecordedEvents() { VornaCoreSDK::UsePlatform(platform()); }

    /// All fakes as a platform, for tests that replace one of them.
    Platform platform() const {
        Platform fakes;
        fakes.eventURL = "https://service.test/v1/event";
        fakes.configURL = "https://service.test/v1/config";
        fakes.httpClient = http;
        fakes.credentialStore = credentials;
        fakes.preferences = preferences;
        fakes.system = system;
        fakes.clock = clock;
        fakes.randomSource = std::make_shared<CountingRandomSource>();
        return fakes;
    }

    /// Removes and returns the queued tasks, oldest first.
    static std::vector<VornaTask> takeTasks() {
        std::vector<VornaTask> tasks;
        while (std::optional<VornaTask> task = SharedInstance::get().queue->dequeue()) {
            tasks.push_back(std::move(*task));
        }
        return tasks;
    }

    /// Likewise, the events only.
    static std::vector<EventData> take() {
        std::vector<EventData> events;
        for (VornaTask& task : takeTasks()) {
            if (EventData* const event = std::get_if<EventData>(&task.data)) {
                events.push_back(std::move(*event));
            }
        }
        return events;
    }
};

}  // namespace vorna::support
