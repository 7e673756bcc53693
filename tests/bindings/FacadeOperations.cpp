// SPDX-License-Identifier: Apache-2.0
#include <tests/bindings/FacadeOperations.h>

#include <tests/support/RecordedEvents.h>
#include <tests/support/TemporaryFolder.h>

#include <vorna/core/Screens.h>
#include <vorna/core/SharedInstance.h>
#include <vorna/core/VornaCoreSDK.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <regex>
#include <stdexcept>
#include <utility>

namespace vorna::bindings {

namespace {

using SDK = VornaCoreSDK;

std::string header() {
    std::string text = support::contentsOf(VORNA_FACADE_HEADER);
    if (text.empty()) {
        throw std::runtime_error("the facade's header cannot be read");
    }
    return std::regex_replace(text, std::regex("//[^\n]*"), "");
}

std::function<std::string()> nothing(void (*call)()) {
    return [call] {
        call();
        return std::string();
    };
}

/// Records the facade's calls of the screens.
class RecordingScreens final : public Screens {
  public:
    void start(const ScreenServices& /*services*/) override {}

    void showPaywall(std::string jsonString) override { calls.push_back("showPaywall " + jsonString); }

    void closePaywall() override { calls.emplace_back("closePaywall"); }

    void showPaidProductLoadingScreen() override { calls.emplace_back("showPaidProductLoadingScreen"); }

    void closePaidProductLoadingScreen() override { calls.emplace_back("closePaidProductLoadingScreen"); }

    void showOnboarding(std::string jsonString) override { calls.push_back("showOnboarding " + jsonString); }

    void closeOnboarding() override { calls.emplace_back("closeOnboarding"); }

    void showEventList() override { calls.emplace_back("showEventList"); }

    void closeEventList() override { calls.emplace_back("closeEventList"); }

    std::vector<std::string> calls;
};

const FacadeOperation& operation(const std::string& signature) {
    const auto& all = facadeOperations();
    const auto found = std::find_if(all.begin(), all.end(), [&](const FacadeOperation& candidate) {
        return candidate.signature == signature;
    });
    if (found == all.end()) {
        throw std::runtime_error("no such operation: " + signature);
    }
    return *found;
}

}  // namespace

std::string described(const std::optional<std::string>& text) {
    return text.value_or("absent");
}

const std::vector<FacadeOperation>& facadeOperations() {
    static const std::vector<FacadeOperation> table = {
        {"UsePlatform(platform)", nothing([] {
             PlatformOptions options;
             options.serviceURL = serviceURL;
             options.credentialStore = CredentialStoreKind::file;
             SDK::UsePlatform(makePlatform(options));
         })},
        {"Init(appID)", nothing([] { SDK::Init("my-app"); })},
        {"GetAppID()", [] { return described(SDK::GetAppID()); }},
        {"GetUserID()", [] { return described(SDK::GetUserID()); }},
        {"GetAdid()", [] { return described(SDK::GetAdid()); }},
        {"SetAdid(adid)", nothing([] { SDK::SetAdid("adid-1"); })},
        {"GetInstallTime()",
         [] {
             const auto time = SDK::GetInstallTime();
             return time ? std::to_string(*time) : "absent";
         }},
        {"CurrentTimestamp()", [] { return std::to_string(SDK::CurrentTimestamp()); }},
        {"GetRemoteConfig(key,defaultValue)", [] { return SDK::GetRemoteConfig("anahtar", "varsayılan 🎉"); }},
        {"Event(name)", nothing([] { SDK::Event("a"); })},
        {"Event(name,customValue)", nothing([] { SDK::Event("a", "değer"); })},
        {"Event(name,startTime,endtime,customValue)", nothing([] { SDK::Event("a", 200, 100, "değer"); })},
        {"OnboardingStart()", nothing([] { SDK::OnboardingStart(); })},
        {"OnboardingStep(step)", nothing([] { SDK::OnboardingStep("3"); })},
        {"OnboardingFinish()", nothing([] { SDK::OnboardingFinish(); })},
        {"LoginSuccess(source)", nothing([] { SDK::LoginSuccess("mail"); })},
        {"InterstitialAdShown()", nothing([] { SDK::InterstitialAdShown(); })},
        {"InterstitialAdClosed()", nothing([] { SDK::InterstitialAdClosed(); })},
        {"RewardedAdShown()", nothing([] { SDK::RewardedAdShown(); })},
        {"RewardedAdClosed()", nothing([] { SDK::RewardedAdClosed(); })},
        {"RewardedAdClaimed()", nothing([] { SDK::RewardedAdClaimed(); })},
        {"BannerAdShown()", nothing([] { SDK::BannerAdShown(); })},
        {"NotificationPermissionGranted()", nothing([] { SDK::NotificationPermissionGranted(); })},
        {"NotificationPermissionDenied()", nothing([] { SDK::NotificationPermissionDenied(); })},
        {"LocationPermissionGranted()", nothing([] { SDK::LocationPermissionGranted(); })},
        {"LocationPermissionDenied()", nothing([] { SDK::LocationPermissionDenied(); })},
        {"ATTPromptShown()", nothing([] { SDK::ATTPromptShown(); })},
        {"ATTPermissionGranted()", nothing([] { SDK::ATTPermissionGranted(); })},
        {"ATTPermissionDenied()", nothing([] { SDK::ATTPermissionDenied(); })},
        {"PaywallShown(paywall)", nothing([] { SDK::PaywallShown("ana ekran"); })},
        {"PaywallClosed(paywall)", nothing([] { SDK::PaywallClosed("main"); })},
        {"PaywallAttempted(paywall)", nothing([] { SDK::PaywallAttempted("main"); })},
        {"PaywallPurchased(paywall)", nothing([] { SDK::PaywallPurchased("main"); })},
        {"PaywallCancelled(paywall)", nothing([] { SDK::PaywallCancelled("main"); })},
        {"TabClicked(tab)", nothing([] { SDK::TabClicked("ayarlar"); })},
        {"FeatureClicked(feature)", nothing([] { SDK::FeatureClicked("🎧"); })},
        {"DailyStreakShown()", nothing([] { SDK::DailyStreakShown(); })},
        {"DailyStreakClaimed()", nothing([] { SDK::DailyStreakClaimed(); })},
        {"DailyStreakClosed()", nothing([] { SDK::DailyStreakClosed(); })},
        {"ShowPaywall(jsonString)", nothing([] { SDK::ShowPaywall("{}"); })},
        {"ClosePaywall()", nothing([] { SDK::ClosePaywall(); })},
        {"ShowPaidProductLoadingScreen()", nothing([] { SDK::ShowPaidProductLoadingScreen(); })},
        {"ClosePaidProductLoadingScreen()", nothing([] { SDK::ClosePaidProductLoadingScreen(); })},
        {"ShowOnboarding(jsonString)", nothing([] { SDK::ShowOnboarding("[]"); })},
        {"CloseOnboarding()", nothing([] { SDK::CloseOnboarding(); })},
        {"ShowEventList()", nothing([] { SDK::ShowEventList(); })},
        {"CloseEventList()", nothing([] { SDK::CloseEventList(); })},
    };
    return table;
}

std::vector<std::string> declaredOperations() {
    const std::string text = header();
    const std::regex declaration(R"(static\s+[^;()=]*?\b(\w+)\(([^()]*)\)\s*;)");
    const std::regex argument(R"((\w+)\s*(,|$))");
    std::vector<std::string> found;
    for (std::sregex_iterator match(text.begin(), text.end(), declaration), end; match != end; ++match) {
        const std::string arguments = (*match)[2];
        std::string signature;
        for (std::sregex_iterator name(arguments.begin(), arguments.end(), argument); name != end; ++name) {
            signature += (signature.empty() ? "" : ",") + (*name)[1].str();
        }
        found.push_back((*match)[1].str() + "(" + signature + ")");
    }
    return found;
}

std::map<std::string, std::string> declaredNotifications() {
    const std::string text = header();
    const std::regex constant(R"re(static constexpr std::string_view (\w+) = "(\w+)";)re");
    std::map<std::string, std::string> found;
    for (std::sregex_iterator match(text.begin(), text.end(), constant), end; match != end; ++match) {
        found[(*match)[1]] = (*match)[2];
    }
    return found;
}

std::string nameOf(const std::string& signature) {
    return signature.substr(0, signature.find('('));
}

std::vector<std::string> argumentsOf(const std::string& signature) {
    const std::regex word(R"(\w+)");
    const auto begin = signature.begin() + static_cast<std::ptrdiff_t>(signature.find('('));
    std::vector<std::string> found;
    for (std::sregex_iterator match(begin, signature.end(), word), end; match != end; ++match) {
        found.push_back(match->str());
    }
    return found;
}

Outcomes compare(const std::string& signature, const std::function<std::string()>& binding) {
    std::optional<support::RecordedEvents> recorded;
    if (nameOf(signature) != "UsePlatform") {
        recorded.emplace();
    }
    const auto screens = std::make_shared<RecordingScreens>();
    installScreens(screens);
    const auto outcomeOf = [&](const std::function<std::string()>& call) {
        screens->calls.clear();
        Outcome outcome{"result " + call()};
        outcome.insert(outcome.end(), screens->calls.begin(), screens->calls.end());
        // The worker that `Init` starts consumes the tasks.
        if (recorded && nameOf(signature) != "Init") {
            for (const EventData& event : recorded->take()) {
                outcome.push_back("event " + event.name + " " + std::to_string(event.createDate) + " " +
                                  std::to_string(event.endDate) + " " + event.customValue);
            }
        }
        outcome.push_back("app " + described(SDK::GetAppID()));
        outcome.push_back("adid " + described(SDK::GetAdid()));
        outcome.push_back("service " + SharedInstance::get().platform.eventURL);
        return outcome;
    };
    // The facade is called second, so that its state cannot be mistaken for the binding's.
    Outcomes outcomes;
    outcomes.ofBinding = outcomeOf(binding);
    outcomes.ofFacade = outcomeOf(operation(signature).call);
    return outcomes;
}

Outcomes compareResults(const std::string& signature, const std::function<std::string()>& binding) {
    const support::RecordedEvents recorded;
    recorded.preferences->put("VornaRemoteConfigs", {{"anahtar", "değer 🎉"}});
    SDK::Init("uygulama");
    SDK::SetAdid("reklam");
    return {{binding()}, {operation(signature).call()}};
}

}  // namespace vorna::bindings
