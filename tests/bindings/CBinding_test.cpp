// SPDX-License-Identifier: Apache-2.0
#include <tests/bindings/FacadeOperations.h>
#include <tests/support/HostThread.h>
#include <tests/support/RecordedEvents.h>

#include <vorna/platform/NotificationCenter.h>
#include <vorna/vorna.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cctype>
#include <cstring>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <regex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <tests/support/TemporaryFolder.h>

namespace vorna::bindings {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::UnorderedElementsAreArray;

std::function<std::string()> nothing(void (*call)()) {
    return [call] {
        call();
        return std::string();
    };
}

std::string textOf(size_t (*read)(char*, size_t)) {
    std::array<char, 256> buffer{};
    return read(buffer.data(), buffer.size()) == VORNA_ABSENT ? "absent" : buffer.data();
}

const std::map<std::string, std::function<std::string()>>& operations() {
    static const std::map<std::string, std::function<std::string()>> table = {
        {"UsePlatform(platform)", nothing([] {
             vorna_platform_options options{};
             options.size = sizeof options;
             options.service_url = serviceURL;
             options.credential_store = VORNA_CREDENTIAL_STORE_FILE;
             vorna_use_platform(&options);
         })},
        {"Init(appID)", nothing([] { vorna_init("my-app"); })},
        {"GetAppID()", [] { return textOf(vorna_get_app_id); }},
        {"GetUserID()", [] { return textOf(vorna_get_user_id); }},
        {"GetAdid()", [] { return textOf(vorna_get_adid); }},
        {"SetAdid(adid)", nothing([] { vorna_set_adid("adid-1"); })},
        {"GetInstallTime()",
         [] {
             std::uint64_t seconds = 0;
             return vorna_get_install_time(&seconds) ? std::to_string(seconds) : "absent";
         }},
        {"CurrentTimestamp()", [] { return std::to_string(vorna_current_timestamp()); }},
        {"GetRemoteConfig(key,defaultValue)",
         [] {
             std::array<char, 256> buffer{};
             vorna_get_remote_config("anahtar", "varsayılan 🎉", buffer.data(), buffer.size());
             return std::string(buffer.data());
         }},
        {"Event(name)", nothing([] { vorna_event("a"); })},
        {"Event(name,customValue)", nothing([] { vorna_event_with_value("a", "değer"); })},
        {"Event(name,startTime,endtime,customValue)",
         nothing([] { vorna_event_timed("a", 200, 100, "değer"); })},
        {"OnboardingStart()", nothing([] { vorna_onboarding_start(); })},
        {"OnboardingStep(step)", nothing([] { vorna_onboarding_step("3"); })},
        {"OnboardingFinish()", nothing([] { vorna_onboarding_finish(); })},
        {"LoginSuccess(source)", nothing([] { vorna_login_success("mail"); })},
        {"InterstitialAdShown()", nothing([] { vorna_interstitial_ad_shown(); })},
        {"InterstitialAdClosed()", nothing([] { vorna_interstitial_ad_closed(); })},
        {"RewardedAdShown()", nothing([] { vorna_rewarded_ad_shown(); })},
        {"RewardedAdClosed()", nothing([] { vorna_rewarded_ad_closed(); })},
        {"RewardedAdClaimed()", nothing([] { vorna_rewarded_ad_claimed(); })},
        {"BannerAdShown()", nothing([] { vorna_banner_ad_shown(); })},
        {"NotificationPermissionGranted()", nothing([] { vorna_notification_permission_granted(); })},
        {"NotificationPermissionDenied()", nothing([] { vorna_notification_permission_denied(); })},
        {"LocationPermissionGranted()", nothing([] { vorna_location_permission_granted(); })},
        {"LocationPermissionDenied()", nothing([] { vorna_location_permission_denied(); })},
        {"ATTPromptShown()", nothing([] { vorna_att_prompt_shown(); })},
        {"ATTPermissionGranted()", nothing([] { vorna_att_permission_granted(); })},
        {"ATTPermissionDenied()", nothing([] { vorna_att_permission_denied(); })},
        {"PaywallShown(paywall)", nothing([] { vorna_paywall_shown("ana ekran"); })},
        {"PaywallClosed(paywall)", nothing([] { vorna_paywall_closed("main"); })},
        {"PaywallAttempted(paywall)", nothing([] { vorna_paywall_attempted("main"); })},
        {"PaywallPurchased(paywall)", nothing([] { vorna_paywall_purchased("main"); })},
        {"PaywallCancelled(paywall)", nothing([] { vorna_paywall_cancelled("main"); })},
        {"TabClicked(tab)", nothing([] { vorna_tab_clicked("ayarlar"); })},
        {"FeatureClicked(feature)", nothing([] { vorna_feature_clicked("🎧"); })},
        {"DailyStreakShown()", nothing([] { vorna_daily_streak_shown(); })},
        {"DailyStreakClaimed()", nothing([] { vorna_daily_streak_claimed(); })},
        {"DailyStreakClosed()", nothing([] { vorna_daily_streak_closed(); })},
        {"ShowPaywall(jsonString)", nothing([] { vorna_show_paywall("{}"); })},
        {"ClosePaywall()", nothing([] { vorna_close_paywall(); })},
        {"ShowPaidProductLoadingScreen()", nothing([] { vorna_show_paid_product_loading_screen(); })},
        {"ClosePaidProductLoadingScreen()", nothing([] { vorna_close_paid_product_loading_screen(); })},
        {"ShowOnboarding(jsonString)", nothing([] { vorna_show_onboarding("[]"); })},
        {"CloseOnboarding()", nothing([] { vorna_close_onboarding(); })},
        {"ShowEventList()", nothing([] { vorna_show_event_list(); })},
        {"CloseEventList()", nothing([] { vorna_close_event_list(); })},
    };
    return table;
}

/// "ATTPromptShown" is "att_prompt_shown" in C.
std::string inC(const std::string& name) {
    const std::string words =
        std::regex_replace(name, std::regex("([A-Z]+)([A-Z][a-z])|([a-z])([A-Z])"), "$1$3_$2$4");
    std::string lower;
    for (const char letter : words) {
        lower += static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    }
    return lower;
}

std::vector<std::string> bound() {
    std::vector<std::string> signatures;
    for (const auto& [signature, call] : operations()) {
        signatures.push_back(signature);
    }
    return signatures;
}

TEST(CBinding, HasEveryOperationOfTheFacadeUnderItsName) {
    const std::vector<std::string> declared = declaredOperations();
    ASSERT_GT(declared.size(), 40U);
    EXPECT_THAT(bound(), UnorderedElementsAreArray(declared));
    std::vector<std::string> compared;
    for (const FacadeOperation& operation : facadeOperations()) {
        compared.push_back(operation.signature);
    }
    EXPECT_THAT(compared, UnorderedElementsAreArray(declared));

    const std::string header = support::contentsOf(VORNA_C_HEADER);
    for (const std::string& signature : declared) {
        std::string name = "vorna_" + inC(nameOf(signature));
        if (nameOf(signature) == "Event" && argumentsOf(signature).size() > 1) {
            name += argumentsOf(signature).size() == 2 ? "_with_value" : "_timed";
        }
        EXPECT_THAT(header, HasSubstr(" " + name + "(")) << signature;
    }
}

class COperation : public testing::TestWithParam<std::string> {};

TEST_P(COperation, DoesTheSameAsTheFacades) {
    const Outcomes outcomes = compare(GetParam(), operations().at(GetParam()));
    EXPECT_EQ(outcomes.ofBinding, outcomes.ofFacade);
}

INSTANTIATE_TEST_SUITE_P(Operations, COperation, testing::ValuesIn(bound()), [](const auto& testCase) {
    return std::regex_replace(testCase.param, std::regex("\\W"), "_");
});

class CResult : public testing::TestWithParam<std::string> {};

TEST_P(CResult, IsTheFacadesAfterInit) {
    const Outcomes outcomes = compareResults(GetParam(), operations().at(GetParam()));
    EXPECT_EQ(outcomes.ofBinding, outcomes.ofFacade);
    EXPECT_NE(outcomes.ofBinding.front(), "absent");
}

INSTANTIATE_TEST_SUITE_P(Operations, CResult,
                         testing::Values("GetAppID()", "GetUserID()", "GetAdid()", "GetInstallTime()",
                                         "CurrentTimestamp()", "GetRemoteConfig(key,defaultValue)"),
                         [](const auto& testCase) { return nameOf(testCase.param); });

TEST(CText, IsTruncatedAtAWholeCharacterAndItsLengthReturned) {
    const support::RecordedEvents platform;
    const std::string text = "aş🎉";  // of 1, 2 and 4 bytes

    struct Case {
        std::size_t capacity;
        const char* written;
    };

    for (const Case& testCase : {Case{8, "aş🎉"}, Case{7, "aş"}, Case{5, "aş"}, Case{4, "aş"}, Case{3, "a"},
                                 Case{2, "a"}, Case{1, ""}}) {
        std::array<char, 8> buffer;
        buffer.fill('x');
        EXPECT_EQ(vorna_get_remote_config("k", text.c_str(), buffer.data(), testCase.capacity), text.size());
        EXPECT_STREQ(buffer.data(), testCase.written) << testCase.capacity;
        for (std::size_t index = testCase.capacity; index < buffer.size(); ++index) {
            EXPECT_EQ(buffer.at(index), 'x') << "beyond the capacity " << testCase.capacity;
        }
    }
    EXPECT_EQ(vorna_get_remote_config("k", text.c_str(), nullptr, 0), text.size());
    EXPECT_EQ(vorna_get_remote_config("k", text.c_str(), nullptr, 5), text.size());
}

TEST(CText, ThatIsAbsentDiffersFromEmptyText) {
    const support::RecordedEvents platform;
    std::array<char, 4> buffer{"xyz"};
    EXPECT_EQ(vorna_get_adid(buffer.data(), buffer.size()), VORNA_ABSENT);
    EXPECT_STREQ(buffer.data(), "");
    vorna_set_adid("");
    EXPECT_EQ(vorna_get_adid(buffer.data(), buffer.size()), 0U);
}

TEST(CBinding, AcceptsANullCustomValue) {
    const support::RecordedEvents platform;
    vorna_event_with_value("a", nullptr);
    vorna_event_timed("b", 1, 2, nullptr);
    const std::vector<EventData> events = support::RecordedEvents::take();
    ASSERT_EQ(events.size(), 2U);
    EXPECT_EQ(events[0].customValue, "");
    EXPECT_EQ(events[1].endDate, 2U);
}

TEST(CBinding, AcceptsNullEverywhereAndLogsIt) {
    const support::RecordedEvents platform;
    vorna_set_debug(true);
    EXPECT_TRUE(vorna_get_debug());
    testing::internal::CaptureStdout();
    vorna_use_platform(nullptr);
    vorna_init(nullptr);
    vorna_set_adid(nullptr);
    vorna_event(nullptr);
    vorna_event_with_value(nullptr, nullptr);
    vorna_event_timed(nullptr, 0, 0, nullptr);
    vorna_paywall_shown(nullptr);
    vorna_show_onboarding(nullptr);
    vorna_post_signal(6);
    vorna_post_signal(-1);
    EXPECT_EQ(vorna_get_remote_config(nullptr, nullptr, nullptr, 0), 0U);
    EXPECT_FALSE(vorna_get_install_time(nullptr));
    EXPECT_EQ(vorna_add_observer(nullptr, nullptr, nullptr), nullptr);
    EXPECT_EQ(vorna_add_observer("a", nullptr, nullptr), nullptr);
    vorna_remove_observer(nullptr);
    EXPECT_EQ(vorna_notification_name(nullptr), nullptr);
    EXPECT_FALSE(vorna_notification_get_bool(nullptr, nullptr, nullptr));
    EXPECT_EQ(vorna_notification_get_string(nullptr, nullptr), nullptr);
    EXPECT_EQ(vorna_notification_get_map_size(nullptr, nullptr), 0U);
    EXPECT_EQ(vorna_notification_get_map_value(nullptr, nullptr, nullptr), nullptr);
    EXPECT_FALSE(vorna_notification_get_map_entry(nullptr, nullptr, 0, nullptr, nullptr));
    const std::string printed = testing::internal::GetCapturedStdout();
    for (const char* const name :
         {"vorna_use_platform: options", "vorna_init: app_id", "vorna_set_adid: adid", "vorna_event: name",
          "vorna_event_with_value: name", "vorna_event_timed: name", "vorna_paywall_shown: paywall",
          "vorna_show_onboarding: json_string", "vorna_get_remote_config: key",
          "vorna_get_remote_config: default_value", "vorna_add_observer: name",
          "vorna_add_observer: observer", "vorna_remove_observer: observation"}) {
        EXPECT_THAT(printed, HasSubstr(std::string("[VornaSDK] ") + name + " is NULL; nothing is done\n"));
    }
    EXPECT_THAT(printed, HasSubstr("[VornaSDK] vorna_post_signal: unknown signal 6\n"));
    EXPECT_TRUE(support::RecordedEvents::take().empty());
}

TEST(CPlatformOptions, WithoutTheirSizeOrWithAnUnknownStoreAreRefused) {
    vorna_set_debug(true);
    testing::internal::CaptureStdout();
    vorna_platform_options options{};
    options.service_url = serviceURL;
    vorna_use_platform(&options);
    options.size = sizeof options;
    options.credential_store = 3;
    vorna_use_platform(&options);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "[VornaSDK] vorna_use_platform: the size of the options is not set; nothing is done\n"
              "[VornaSDK] vorna_use_platform: unknown credential store; nothing is done\n");
    EXPECT_NE(SharedInstance::get().platform.eventURL, std::string(serviceURL) + "/v1/event");
}

TEST(CPlatformOptions, OfALaterVersionAreAccepted) {
    struct Later {
        vorna_platform_options known{};
        const char* unknown = "later";
    } options;

    options.known.size = sizeof options;
    options.known.service_url = serviceURL;
    options.known.credential_store = VORNA_CREDENTIAL_STORE_FILE;
    vorna_use_platform(&options.known);
    EXPECT_EQ(SharedInstance::get().platform.eventURL, std::string(serviceURL) + "/v1/event");
}

TEST(CNotificationNames, AreTheFacades) {
    const std::map<std::string, std::string> bindings = {
        {"RemoteConfigsReady", vorna_notification_remote_configs_ready},
        {"PaidProductClicked", vorna_notification_paid_product_clicked},
        {"OnboardingScreensFinished", vorna_notification_onboarding_screens_finished},
        {"PaywallScreenClosed", vorna_notification_paywall_screen_closed},
        {"OnboardingScreenClosed", vorna_notification_onboarding_screen_closed},
        {"PaywallScreenFinished", vorna_notification_paywall_screen_finished},
        {"RestorePurchaseClicked", vorna_notification_restore_purchase_clicked},
        {"EventListUpdated", vorna_notification_event_list_updated},
    };
    EXPECT_EQ(bindings, declaredNotifications());
}

TEST(CSignals, ArePostedUnderTheirNames) {
    std::vector<std::string> posted;
    std::vector<NotificationCenter::Observation> observations;
    for (const std::string_view name :
         {UIApplicationDidFinishLaunchingNotification, UIApplicationDidBecomeActiveNotification,
          UIApplicationWillResignActiveNotification, UIApplicationDidEnterBackgroundNotification,
          UIApplicationWillEnterForegroundNotification, UIApplicationDidReceiveMemoryWarningNotification}) {
        observations.push_back(NotificationCenter::defaultCenter().addObserver(
            name, [&](const Notification& notification) { posted.push_back(notification.name); }));
    }
    for (const vorna_signal signal :
         {VORNA_SIGNAL_DID_FINISH_LAUNCHING, VORNA_SIGNAL_DID_BECOME_ACTIVE, VORNA_SIGNAL_WILL_RESIGN_ACTIVE,
          VORNA_SIGNAL_DID_ENTER_BACKGROUND, VORNA_SIGNAL_WILL_ENTER_FOREGROUND,
          VORNA_SIGNAL_DID_RECEIVE_MEMORY_WARNING}) {
        vorna_post_signal(signal);
    }
    EXPECT_THAT(posted, ElementsAre(UIApplicationDidFinishLaunchingNotification,
                                    UIApplicationDidBecomeActiveNotification,
                                    UIApplicationWillResignActiveNotification,
                                    UIApplicationDidEnterBackgroundNotification,
                                    UIApplicationWillEnterForegroundNotification,
                                    UIApplicationDidReceiveMemoryWarningNotification));
}

TEST(CObserver, ReadsTheUserInfo) {
    std::vector<std::string> read;
    vorna_observation* const observation = vorna_add_observer(
        "test",
        [](const vorna_notification* notification, void* userData) {
            auto& lines = *static_cast<std::vector<std::string>*>(userData);
            bool flag = false;
            lines.emplace_back(vorna_notification_name(notification));
            lines.emplace_back(vorna_notification_get_bool(notification, "flag", &flag) && flag ? "true"
                                                                                                : "-");
            lines.emplace_back(vorna_notification_get_string(notification, "text"));
            lines.emplace_back(vorna_notification_get_map_value(notification, "map", "b"));
            const char* entry = nullptr;
            const char* value = nullptr;
            for (std::size_t index = 0;
                 vorna_notification_get_map_entry(notification, "map", index, &entry, &value); ++index) {
                lines.emplace_back(std::string(entry) + "=" + value);
            }
            lines.emplace_back(std::to_string(vorna_notification_get_map_size(notification, "map")));
            const bool otherKinds = vorna_notification_get_bool(notification, "text", nullptr) ||
                                    vorna_notification_get_string(notification, "flag") != nullptr ||
                                    vorna_notification_get_map_size(notification, "text") != 0 ||
                                    vorna_notification_get_map_value(notification, "map", "c") != nullptr ||
                                    vorna_notification_get_string(notification, "none") != nullptr;
            lines.emplace_back(otherKinds ? "what is not there" : "no more");
        },
        &read);
    NotificationCenter::defaultCenter().post(
        "test", {{"flag", true},
                 {"text", std::string("yazı 🎉")},
                 {"map", std::map<std::string, std::string>{{"a", "1"}, {"b", "2"}}}});
    vorna_remove_observer(observation);
    NotificationCenter::defaultCenter().post("test");
    EXPECT_THAT(read, ElementsAre("test", "true", "yazı 🎉", "2", "a=1", "b=2", "2", "no more"));
}

/// A table that is not a map.
class LargeTable final : public TextTable {
  public:
    std::size_t size() const noexcept override { return 2; }

    std::optional<std::string_view> find(std::string_view /*key*/) const noexcept override {
        return std::nullopt;
    }

    void
    forEach(const std::function<void(std::string_view key, std::string_view value)>& visit) const override {
        visit("b", "2");
        visit("a", "1");
    }
};

TEST(CObserver, ReadsALargeTableAsAMap) {
    std::vector<std::string> read;
    vorna_observation* const observation = vorna_add_observer(
        "test",
        [](const vorna_notification* notification, void* userData) {
            auto& lines = *static_cast<std::vector<std::string>*>(userData);
            const char* const first = vorna_notification_get_map_value(notification, "table", "a");
            const char* entry = nullptr;
            const char* value = nullptr;
            for (std::size_t index = 0;
                 vorna_notification_get_map_entry(notification, "table", index, &entry, &value); ++index) {
                lines.emplace_back(std::string(entry) + "=" + value);
            }
            lines.emplace_back(std::to_string(vorna_notification_get_map_size(notification, "table")));
            lines.emplace_back(first);
            const bool hasOther = vorna_notification_get_map_value(notification, "table", "c") != nullptr ||
                                  vorna_notification_get_string(notification, "table") != nullptr;
            lines.emplace_back(hasOther ? "what is not there" : "no more");
        },
        &read);
    NotificationCenter::defaultCenter().post(
        "test", {{"table", std::shared_ptr<const TextTable>(std::make_shared<LargeTable>())}});
    vorna_remove_observer(observation);
    EXPECT_THAT(read, ElementsAre("a=1", "b=2", "2", "1", "no more"));
}

TEST(CObserver, MayRemoveItself) {
    struct Observer {
        vorna_observation* observation = nullptr;
        int calls = 0;
    } observer;

    observer.observation = vorna_add_observer(
        "test",
        [](const vorna_notification* notification, void* userData) {
            auto& self = *static_cast<Observer*>(userData);
            ++self.calls;
            vorna_remove_observer(self.observation);
            // The arguments of this call are still valid.
            EXPECT_STREQ(vorna_notification_name(notification), "test");
        },
        &observer);
    NotificationCenter::defaultCenter().post("test");
    NotificationCenter::defaultCenter().post("test");
    EXPECT_EQ(observer.calls, 1);
}

TEST(CObserver, MayEndItsThread) {
    vorna_observation* const observation = vorna_add_observer(
        "UIApplicationDidEnterBackgroundNotification",
        [](const vorna_notification*, void*) { support::HostThread::endHere(); }, nullptr);
    support::HostThread thread([] { vorna_post_signal(VORNA_SIGNAL_DID_ENTER_BACKGROUND); });
    thread.join();
    EXPECT_TRUE(thread.endedItself());
    // Waits for running calls.
    vorna_remove_observer(observation);
}

TEST(CObserver, IsNotRunningOnceRemoved) {
    for (int round = 0; round < 200; ++round) {
        std::atomic<bool> mayBeCalled = true;
        std::atomic<bool> wasCalledLate = false;

        struct Shared {
            std::atomic<bool>& mayBeCalled;
            std::atomic<bool>& wasCalledLate;
        } shared{mayBeCalled, wasCalledLate};

        vorna_observation* const observation = vorna_add_observer(
            "test",
            [](const vorna_notification*, void* userData) {
                const auto& state = *static_cast<Shared*>(userData);
                std::this_thread::yield();
                if (!state.mayBeCalled) {
                    state.wasCalledLate = true;
                }
            },
            &shared);
        std::thread poster([] {
            for (int count = 0; count < 20; ++count) {
                NotificationCenter::defaultCenter().post("test");
            }
        });
        vorna_remove_observer(observation);
        mayBeCalled = false;
        poster.join();
        ASSERT_FALSE(wasCalledLate);
    }
}

}  // namespace
}  // namespace vorna::bindings
