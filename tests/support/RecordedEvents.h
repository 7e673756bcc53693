// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The facade on a platform of fakes, before `Init`: what it records stays in the queue, where a test can
/// look at it.

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

/// Make one at the beginning of a test, before any operation of the facade. The fakes are open to the test.
struct RecordedEvents {
    std::shared_ptr<SettableClock> clock = std::make_shared<SettableClock>();
    std::shared_ptr<FixedSystem> system = std::make_shared<FixedSystem>();
    std::shared_ptr<RecordingHttpClient> http = std::make_shared<RecordingHttpClient>();
    std::shared_ptr<InMemoryCredentialStore> credentials = std::make_shared<InMemoryCredentialStore>();
    std::shared_ptr<InMemoryPreferences> preferences = std::make_shared<InMemoryPreferences>();

    RecordedEvents() { VornaCoreSDK::UsePlatform(platform()); }

    /// The fakes together, for a test that puts another port among them.
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

    /// The tasks that wait, oldest first.
    static std::vector<VornaTask> takeTasks() {
        std::vector<VornaTask> tasks;
        while (std::optional<VornaTask> task = SharedInstance::get().queue->dequeue()) {
            tasks.push_back(std::move(*task));
        }
        return tasks;
    }

    /// The events among them.
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
