// SPDX-License-Identifier: Apache-2.0
#include <bindings/Diagnostics.h>

#include <vorna/base/CatchAll.h>
#include <vorna/core/VornaCoreSDK.h>
#include <vorna/platform/NotificationCenter.h>
#include <vorna/platform/Platform.h>
#include <vorna/vorna.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <exception>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

using vorna::VornaCoreSDK;
using vorna::bindings::report;

/// The opaque types of the header.
struct vorna_notification {
    const vorna::Notification& notification;
    /// Large tables under their keys, once they have been requested as maps.
    mutable std::map<std::string, std::map<std::string, std::string>, std::less<>> maps;
};

struct vorna_observation {
    vorna::NotificationCenter::Observation observation;
};

namespace {

/// Runs an operation that may throw std::bad_alloc.
template <class Operation>
auto ignoringExceptions(Operation operation) -> decltype(operation()) {
    return vorna::catchAll(operation, [] { return decltype(operation())(); });
}

/// Whether there is a value; logs a line if it is NULL.
bool isGiven(std::string_view operation, std::string_view argument, const void* value) {
    if (value == nullptr) {
        ignoringExceptions([&] { report({operation, ": ", argument, " is NULL; nothing is done"}); });
    }
    return value != nullptr;
}

void withText(std::string_view operation, std::string_view argument, const char* text,
              void (*run)(vorna::TextArgument)) {
    if (isGiven(operation, argument, text)) {
        run(text);
    }
}

std::optional<std::string_view> unlessNull(const char* text) {
    return text == nullptr ? std::nullopt : std::optional<std::string_view>(text);
}

/// Returns the longest prefix that fits and ends with a whole character.
std::string_view fitting(std::string_view text, std::size_t longest) {
    if (text.size() <= longest) {
        return text;
    }
    const auto continues = [](char unit) { return (static_cast<unsigned char>(unit) & 0xC0U) == 0x80U; };
    while (longest > 0 && continues(text[longest])) {
        --longest;
    }
    return text.substr(0, longest);
}

std::size_t write(std::optional<std::string_view> text, char* buffer, std::size_t capacity) {
    if (buffer != nullptr && capacity > 0) {
        const std::string_view written = fitting(text.value_or(""), capacity - 1);
        std::copy(written.begin(), written.end(), buffer);
        buffer[written.size()] = 0;
    }
    return text ? text->size() : VORNA_ABSENT;
}

/// Returns the value with that key; nullptr if there is none or it has another type.
template <class Value>
const Value* find(const vorna_notification* notification, const char* key) {
    if (notification == nullptr || key == nullptr) {
        return nullptr;
    }
    const vorna::UserInfo& userInfo = notification->notification.userInfo;
    const auto found = userInfo.find(std::string_view(key));
    return found == userInfo.end() ? nullptr : std::get_if<Value>(&found->second);
}

using Map = std::map<std::string, std::string>;

/// Returns the map with that key; nullptr if there is none.
const Map* findMap(const vorna_notification* notification, const char* key) {
    const auto* const table = find<std::shared_ptr<const vorna::TextTable>>(notification, key);
    if (table == nullptr) {
        return find<Map>(notification, key);
    }
    return ignoringExceptions([&]() -> const Map* {
        if (const auto made = notification->maps.find(std::string_view(key));
            made != notification->maps.end()) {
            return &made->second;
        }
        Map map;
        (*table)->forEach([&map](std::string_view entry, std::string_view value) {
            map.emplace(std::string(entry), std::string(value));
        });
        return &notification->maps.emplace(key, std::move(map)).first->second;
    });
}

constexpr std::array<std::string_view, 6> signalNames = {
    vorna::UIApplicationDidFinishLaunchingNotification,
    vorna::UIApplicationDidBecomeActiveNotification,
    vorna::UIApplicationWillResignActiveNotification,
    vorna::UIApplicationDidEnterBackgroundNotification,
    vorna::UIApplicationWillEnterForegroundNotification,
    vorna::UIApplicationDidReceiveMemoryWarningNotification};
static_assert(VORNA_SIGNAL_DID_RECEIVE_MEMORY_WARNING + 1 == signalNames.size());

std::optional<vorna::CredentialStoreKind> storeKind(vorna_credential_store store) {
    switch (store) {
    case VORNA_CREDENTIAL_STORE_AUTOMATIC:
        return vorna::CredentialStoreKind::automatic;
    case VORNA_CREDENTIAL_STORE_SECRET_SERVICE:
        return vorna::CredentialStoreKind::secretService;
    case VORNA_CREDENTIAL_STORE_FILE:
        return vorna::CredentialStoreKind::file;
    default:
        return std::nullopt;
    }
}

void usePlatform(const vorna_platform_options& given) {
    if (given.size < sizeof(vorna_platform_options)) {
        report({"vorna_use_platform: the size of the options is not set; nothing is done"});
        return;
    }
    const std::optional<vorna::CredentialStoreKind> store = storeKind(given.credential_store);
    if (!store) {
        report({"vorna_use_platform: unknown credential store; nothing is done"});
        return;
    }
    const auto text = [](const char* value) { return std::string(unlessNull(value).value_or("")); };
    const auto optionalText = [](const char* value) {
        return value == nullptr ? std::nullopt : std::optional<std::string>(value);
    };
    vorna::PlatformOptions options;
    options.serviceURL = text(given.service_url);
    options.certificateAuthorityFile = text(given.certificate_authority_file);
    options.bundleIdentifier = optionalText(given.bundle_identifier);
    options.bundleShortVersion = optionalText(given.bundle_short_version);
    options.bundleVersion = optionalText(given.bundle_version);
    options.dataDirectory = text(given.data_directory);
    options.credentialStore = *store;
    VornaCoreSDK::UsePlatform(vorna::makePlatform(options));
}

}  // namespace

// The constants of the facade are literals, so they are null-terminated.
const char* const vorna_notification_remote_configs_ready = VornaCoreSDK::RemoteConfigsReady.data();
const char* const vorna_notification_paid_product_clicked = VornaCoreSDK::PaidProductClicked.data();
const char* const vorna_notification_onboarding_screens_finished =
    VornaCoreSDK::OnboardingScreensFinished.data();
const char* const vorna_notification_paywall_screen_closed = VornaCoreSDK::PaywallScreenClosed.data();
const char* const vorna_notification_onboarding_screen_closed = VornaCoreSDK::OnboardingScreenClosed.data();
const char* const vorna_notification_paywall_screen_finished = VornaCoreSDK::PaywallScreenFinished.data();
const char* const vorna_notification_restore_purchase_clicked = VornaCoreSDK::RestorePurchaseClicked.data();
const char* const vorna_notification_event_list_updated = VornaCoreSDK::EventListUpdated.data();

void vorna_use_platform(const vorna_platform_options* options) {
    if (!isGiven("vorna_use_platform", "options", options)) {
        return;
    }
    try {
        usePlatform(*options);
    } catch (const std::exception&) {
        // Out of memory. The defaults must not stand for what was asked for.
        VornaCoreSDK::UsePlatform(vorna::unusablePlatform());
    }
}

void vorna_init(const char* app_id) {
    withText("vorna_init", "app_id", app_id, VornaCoreSDK::Init);
}

void vorna_set_debug(bool debug) {
    VornaCoreSDK::debug = debug;
}

bool vorna_get_debug(void) {
    return VornaCoreSDK::debug;
}

size_t vorna_get_app_id(char* buffer, size_t capacity) {
    return write(VornaCoreSDK::GetAppID(), buffer, capacity);
}

size_t vorna_get_user_id(char* buffer, size_t capacity) {
    return write(VornaCoreSDK::GetUserID(), buffer, capacity);
}

size_t vorna_get_adid(char* buffer, size_t capacity) {
    return write(VornaCoreSDK::GetAdid(), buffer, capacity);
}

void vorna_set_adid(const char* adid) {
    withText("vorna_set_adid", "adid", adid, VornaCoreSDK::SetAdid);
}

bool vorna_get_install_time(uint64_t* seconds) {
    const std::optional<std::uint64_t> time = VornaCoreSDK::GetInstallTime();
    if (time && seconds != nullptr) {
        *seconds = *time;
    }
    return time.has_value();
}

uint64_t vorna_current_timestamp(void) {
    return VornaCoreSDK::CurrentTimestamp();
}

size_t vorna_get_remote_config(const char* key, const char* default_value, char* buffer, size_t capacity) {
    constexpr std::string_view operation = "vorna_get_remote_config";
    const bool hasDefault = isGiven(operation, "default_value", default_value);
    const std::string_view fallback = hasDefault ? default_value : "";
    if (!isGiven(operation, "key", key)) {
        return write(fallback, buffer, capacity);
    }
    return write(VornaCoreSDK::GetRemoteConfig(key, fallback), buffer, capacity);
}

void vorna_event(const char* name) {
    if (isGiven("vorna_event", "name", name)) {
        VornaCoreSDK::Event(name);
    }
}

void vorna_event_with_value(const char* name, const char* custom_value) {
    if (isGiven("vorna_event_with_value", "name", name)) {
        VornaCoreSDK::Event(name, unlessNull(custom_value));
    }
}

void vorna_event_timed(const char* name, uint64_t start_time, uint64_t end_time, const char* custom_value) {
    if (isGiven("vorna_event_timed", "name", name)) {
        VornaCoreSDK::Event(name, start_time, end_time, unlessNull(custom_value));
    }
}

void vorna_onboarding_start(void) {
    VornaCoreSDK::OnboardingStart();
}

void vorna_onboarding_step(const char* step) {
    withText("vorna_onboarding_step", "step", step, VornaCoreSDK::OnboardingStep);
}

void vorna_onboarding_finish(void) {
    VornaCoreSDK::OnboardingFinish();
}

void vorna_login_success(const char* source) {
    withText("vorna_login_success", "source", source, VornaCoreSDK::LoginSuccess);
}

void vorna_interstitial_ad_shown(void) {
    VornaCoreSDK::InterstitialAdShown();
}

void vorna_interstitial_ad_closed(void) {
    VornaCoreSDK::InterstitialAdClosed();
}

void vorna_rewarded_ad_shown(void) {
    VornaCoreSDK::RewardedAdShown();
}

void vorna_rewarded_ad_closed(void) {
    VornaCoreSDK::RewardedAdClosed();
}

void vorna_rewarded_ad_claimed(void) {
    VornaCoreSDK::RewardedAdClaimed();
}

void vorna_banner_ad_shown(void) {
    VornaCoreSDK::BannerAdShown();
}

void vorna_notification_permission_granted(void) {
    VornaCoreSDK::NotificationPermissionGranted();
}

void vorna_notification_permission_denied(void) {
    VornaCoreSDK::NotificationPermissionDenied();
}

void vorna_location_permission_granted(void) {
    VornaCoreSDK::LocationPermissionGranted();
}

void vorna_location_permission_denied(void) {
    VornaCoreSDK::LocationPermissionDenied();
}

void vorna_att_prompt_shown(void) {
    VornaCoreSDK::ATTPromptShown();
}

void vorna_att_permission_granted(void) {
    VornaCoreSDK::ATTPermissionGranted();
}

void vorna_att_permission_denied(void) {
    VornaCoreSDK::ATTPermissionDenied();
}

void vorna_paywall_shown(const char* paywall) {
    withText("vorna_paywall_shown", "paywall", paywall, VornaCoreSDK::PaywallShown);
}

void vorna_paywall_closed(const char* paywall) {
    withText("vorna_paywall_closed", "paywall", paywall, VornaCoreSDK::PaywallClosed);
}

void vorna_paywall_attempted(const char* paywall) {
    withText("vorna_paywall_attempted", "paywall", paywall, VornaCoreSDK::PaywallAttempted);
}

void vorna_paywall_purchased(const char* paywall) {
    withText("vorna_paywall_purchased", "paywall", paywall, VornaCoreSDK::PaywallPurchased);
}

void vorna_paywall_cancelled(const char* paywall) {
    withText("vorna_paywall_cancelled", "paywall", paywall, VornaCoreSDK::PaywallCancelled);
}

void vorna_tab_clicked(const char* tab) {
    withText("vorna_tab_clicked", "tab", tab, VornaCoreSDK::TabClicked);
}

void vorna_feature_clicked(const char* feature) {
    withText("vorna_feature_clicked", "feature", feature, VornaCoreSDK::FeatureClicked);
}

void vorna_daily_streak_shown(void) {
    VornaCoreSDK::DailyStreakShown();
}

void vorna_daily_streak_claimed(void) {
    VornaCoreSDK::DailyStreakClaimed();
}

void vorna_daily_streak_closed(void) {
    VornaCoreSDK::DailyStreakClosed();
}

void vorna_show_paywall(const char* json_string) {
    withText("vorna_show_paywall", "json_string", json_string, VornaCoreSDK::ShowPaywall);
}

void vorna_close_paywall(void) {
    VornaCoreSDK::ClosePaywall();
}

void vorna_show_paid_product_loading_screen(void) {
    VornaCoreSDK::ShowPaidProductLoadingScreen();
}

void vorna_close_paid_product_loading_screen(void) {
    VornaCoreSDK::ClosePaidProductLoadingScreen();
}

void vorna_show_onboarding(const char* json_string) {
    withText("vorna_show_onboarding", "json_string", json_string, VornaCoreSDK::ShowOnboarding);
}

void vorna_close_onboarding(void) {
    VornaCoreSDK::CloseOnboarding();
}

void vorna_show_event_list(void) {
    VornaCoreSDK::ShowEventList();
}

void vorna_close_event_list(void) {
    VornaCoreSDK::CloseEventList();
}

void vorna_post_signal(vorna_signal signal) {
    ignoringExceptions([&] {
        if (signal < 0 || static_cast<std::size_t>(signal) >= signalNames.size()) {
            report({"vorna_post_signal: unknown signal ", std::to_string(signal)});
            return;
        }
        const auto index = static_cast<std::size_t>(signal);
        vorna::NotificationCenter::defaultCenter().post(signalNames.at(index));
    });
}

vorna_observation* vorna_add_observer(const char* name, vorna_observer observer, void* user_data) {
    constexpr std::string_view operation = "vorna_add_observer";
    if (!isGiven(operation, "name", name) ||
        !isGiven(operation, "observer", reinterpret_cast<const void*>(observer))) {
        return nullptr;
    }
    return ignoringExceptions([&] {
        auto observation = std::make_unique<vorna_observation>();
        observation->observation = vorna::NotificationCenter::defaultCenter().addObserver(
            name, [observer, user_data](const vorna::Notification& posted) {
                const vorna_notification notification{posted, {}};
                observer(&notification, user_data);
            });
        return observation.release();
    });
}

void vorna_remove_observer(vorna_observation* observation) {
    if (isGiven("vorna_remove_observer", "observation", observation)) {
        const std::unique_ptr<vorna_observation> ended(observation);
    }
}

const char* vorna_notification_name(const vorna_notification* notification) {
    return notification == nullptr ? nullptr : notification->notification.name.c_str();
}

bool vorna_notification_get_bool(const vorna_notification* notification, const char* key, bool* value) {
    const bool* const found = find<bool>(notification, key);
    if (found != nullptr && value != nullptr) {
        *value = *found;
    }
    return found != nullptr;
}

const char* vorna_notification_get_string(const vorna_notification* notification, const char* key) {
    const auto* const found = find<std::string>(notification, key);
    return found == nullptr ? nullptr : found->c_str();
}

size_t vorna_notification_get_map_size(const vorna_notification* notification, const char* key) {
    const Map* const found = findMap(notification, key);
    return found == nullptr ? 0 : found->size();
}

const char* vorna_notification_get_map_value(const vorna_notification* notification, const char* key,
                                             const char* entry) {
    const Map* const map = findMap(notification, key);
    if (map == nullptr || entry == nullptr) {
        return nullptr;
    }
    return ignoringExceptions([&]() -> const char* {
        const auto found = map->find(entry);
        return found == map->end() ? nullptr : found->second.c_str();
    });
}

bool vorna_notification_get_map_entry(const vorna_notification* notification, const char* key, size_t index,
                                      const char** entry, const char** value) {
    const Map* const map = findMap(notification, key);
    if (map == nullptr || index >= map->size()) {
        return false;
    }
    const auto found = std::next(map->begin(), static_cast<std::ptrdiff_t>(index));
    if (entry != nullptr) {
        *entry = found->first.c_str();
    }
    if (value != nullptr) {
        *value = found->second.c_str();
    }
    return true;
}
