// SPDX-License-Identifier: Apache-2.0
#include <bench/support/SampleEvents.h>

#include <vorna/core/VornaCoreSDK.h>

#include <array>

namespace vorna::bench {

namespace {

constexpr std::array<SampleEvent, 32> samples = {{
    {"onboarding_start", ""},
    {"onboarding_welcome", ""},
    {"onboarding_choose_language", ""},
    {"onboarding_finish", ""},
    {"login_success", "mail"},
    {"ad_int_shown", ""},
    {"ad_int_closed", ""},
    {"ad_rw_reward_claimed", ""},
    {"permission_notification_granted", ""},
    {"permission_location_denied", ""},
    {"paywall_shown", "yearly_discount_autumn"},
    {"paywall_attempted", "yearly_discount_autumn"},
    {"paywall_purchased", "com.example.app.premium.yearly"},
    {"paywall_closed", "yearly_discount_autumn"},
    {"tab_clicked", "home"},
    {"tab_clicked", "profile"},
    {"feature_clicked", "photo_background_remover"},
    {"feature_clicked", "share"},
    {"dailystreak_shown", ""},
    {"dailystreak_claimed", ""},
    {"level_up", "7"},
    {"level_failed", "world_3_level_12"},
    {"lesson_completed", "grammar/past-tense/4"},
    {"search", "wei\xC3\x9F nicht"},
    {"song_played", "01HZX4T2M9V6QK3W8C5Y7N0B1D"},
    {"checkout_step_2", std::nullopt},
    {"checkout_step_3", std::nullopt},
    {"settings_opened", std::nullopt},
    {"export_started", R"({"format":"pdf","pages":12})"},
    {"widget_added", "medium"},
    {"review_prompt_shown", std::nullopt},
    {"push_opened", "campaign_2026_11_reactivation"},
}};

}  // namespace

SampleEvent sampleEvent(std::size_t index) {
    return samples[index % samples.size()];
}

void recordSample(std::size_t index) {
    const SampleEvent event = sampleEvent(index);
    VornaCoreSDK::Event(event.name, event.customValue);
}

PlatformOptions sampleOptions(const std::string& dataDirectory) {
    PlatformOptions options;
    options.bundleIdentifier = "com.example.bench";
    options.bundleShortVersion = "3.14.1";
    options.bundleVersion = "2026112101";
    options.dataDirectory = dataDirectory;
    options.credentialStore = CredentialStoreKind::file;
    return options;
}

}  // namespace vorna::bench
