// SPDX-License-Identifier: Apache-2.0
/// A complete small host without Qt: reads lines from a file or standard input and records an event for each.
///
///     vorna-console [options] [FILE]
///
/// A line is the name of an operation and its argument; lines that begin with "#" are comments:
///
///     PaywallShown main
///     Event level_up 7                            any name, optionally with a custom value
///     TimedEvent lesson 1704067200 1704067260 7   with start and end in seconds since 1970

#include <vorna/core/VornaCoreSDK.h>

#include <charconv>
#include <condition_variable>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace {

using vorna::VornaCoreSDK;

/// Keeps track of whether all requests have completed. A host may wrap any port of the platform like this.
class CountingHttpClient final : public vorna::HttpClient {
  public:
    explicit CountingHttpClient(std::shared_ptr<vorna::HttpClient> client) : client_(std::move(client)) {}

    void start(vorna::HttpRequest request, Completion completion) override {
        {
            const std::scoped_lock lock(mutex_);
            ++pending_;
        }
        client_->start(std::move(request),
                       [this, completion = std::move(completion)](auto body, auto response, auto error) {
                           completion(std::move(body), std::move(response), std::move(error));
                           // Under the lock, so that this object is no longer in use when the waiter returns.
                           const std::scoped_lock lock(mutex_);
                           --pending_;
                           changed_.notify_all();
                       });
    }

    /// Waits until that many events have been passed on and all requests have completed; false on timeout.
    bool waitUntilIdle(const std::uint64_t& passedOn, std::uint64_t expected, std::chrono::seconds timeout) {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, timeout, [&] { return pending_ == 0 && passedOn >= expected; });
    }

    /// Increments a number that `waitUntilIdle` reads.
    void count(std::uint64_t& number) {
        const std::scoped_lock lock(mutex_);
        ++number;
        changed_.notify_all();
    }

  private:
    const std::shared_ptr<vorna::HttpClient> client_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::uint64_t pending_ = 0;
};

using Plain = void (*)();
using WithText = void (*)(vorna::TextArgument);

const std::map<std::string_view, std::variant<Plain, WithText>>& operations() {
    static const std::map<std::string_view, std::variant<Plain, WithText>> table = {
        {"OnboardingStart", VornaCoreSDK::OnboardingStart},
        {"OnboardingStep", VornaCoreSDK::OnboardingStep},
        {"OnboardingFinish", VornaCoreSDK::OnboardingFinish},
        {"LoginSuccess", VornaCoreSDK::LoginSuccess},
        {"InterstitialAdShown", VornaCoreSDK::InterstitialAdShown},
        {"InterstitialAdClosed", VornaCoreSDK::InterstitialAdClosed},
        {"RewardedAdShown", VornaCoreSDK::RewardedAdShown},
        {"RewardedAdClosed", VornaCoreSDK::RewardedAdClosed},
        {"RewardedAdClaimed", VornaCoreSDK::RewardedAdClaimed},
        {"BannerAdShown", VornaCoreSDK::BannerAdShown},
        {"NotificationPermissionGranted", VornaCoreSDK::NotificationPermissionGranted},
        {"NotificationPermissionDenied", VornaCoreSDK::NotificationPermissionDenied},
        {"LocationPermissionGranted", VornaCoreSDK::LocationPermissionGranted},
        {"LocationPermissionDenied", VornaCoreSDK::LocationPermissionDenied},
        {"ATTPromptShown", VornaCoreSDK::ATTPromptShown},
        {"ATTPermissionGranted", VornaCoreSDK::ATTPermissionGranted},
        {"ATTPermissionDenied", VornaCoreSDK::ATTPermissionDenied},
        {"PaywallShown", VornaCoreSDK::PaywallShown},
        {"PaywallClosed", VornaCoreSDK::PaywallClosed},
        {"PaywallAttempted", VornaCoreSDK::PaywallAttempted},
        {"PaywallPurchased", VornaCoreSDK::PaywallPurchased},
        {"PaywallCancelled", VornaCoreSDK::PaywallCancelled},
        {"TabClicked", VornaCoreSDK::TabClicked},
        {"FeatureClicked", VornaCoreSDK::FeatureClicked},
        {"DailyStreakShown", VornaCoreSDK::DailyStreakShown},
        {"DailyStreakClaimed", VornaCoreSDK::DailyStreakClaimed},
        {"DailyStreakClosed", VornaCoreSDK::DailyStreakClosed},
    };
    return table;
}

/// Removes the first word from the text and returns it.
std::string_view nextWord(std::string_view& text) {
    const std::size_t end = text.find(' ');
    const std::string_view word = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    return word;
}

std::optional<std::uint64_t> nextSeconds(std::string_view& text) {
    const std::string_view word = nextWord(text);
    std::uint64_t seconds = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), seconds);
    if (error != std::errc() || end != word.data() + word.size()) {
        return std::nullopt;
    }
    return seconds;
}

std::optional<std::string_view> unlessEmpty(std::string_view text) {
    return text.empty() ? std::nullopt : std::optional(text);
}

/// Records the event on that line; false if the line is invalid.
bool recordLine(std::string_view line) {
    const std::string_view operation = nextWord(line);
    if (operation == "Event") {
        const std::string_view name = nextWord(line);
        VornaCoreSDK::Event(name, unlessEmpty(line));
        return true;
    }
    if (operation == "TimedEvent") {
        const std::string_view name = nextWord(line);
        const std::optional<std::uint64_t> start = nextSeconds(line);
        const std::optional<std::uint64_t> end = nextSeconds(line);
        if (!start || !end) {
            return false;
        }
        VornaCoreSDK::Event(name, *start, *end, unlessEmpty(line));
        return true;
    }
    const auto found = operations().find(operation);
    if (found == operations().end()) {
        return false;
    }
    if (const Plain* const plain = std::get_if<Plain>(&found->second)) {
        (*plain)();
    } else {
        std::get<WithText>(found->second)(line);
    }
    return true;
}

struct Arguments {
    vorna::PlatformOptions platform;
    std::string appID = "vorna-console";
    std::string file;
    bool debug = false;
};

constexpr std::string_view usage = R"(Usage: vorna-console [options] [FILE]
Records an event for each line of FILE, or of standard input.
  --service URL   scheme and authority of the service, such as https://127.0.0.1:8443
  --ca FILE       certificate authority to trust instead of the system's
  --data DIR      folder for preferences and identity
  --app-id ID     application identifier (default: vorna-console)
  --debug         print debug output of the library
)";

std::optional<Arguments> parse(int count, char** texts) {
    Arguments arguments;
    const std::map<std::string_view, std::string*> valued = {
        {"--service", &arguments.platform.serviceURL},
        {"--ca", &arguments.platform.certificateAuthorityFile},
        {"--data", &arguments.platform.dataDirectory},
        {"--app-id", &arguments.appID},
    };
    for (int index = 1; index < count; ++index) {
        const std::string_view text = texts[index];
        const auto option = valued.find(text);
        if (option != valued.end() && index + 1 < count) {
            *option->second = texts[++index];
        } else if (text == "--debug") {
            arguments.debug = true;
        } else if (!text.starts_with("-") && arguments.file.empty()) {
            arguments.file = text;
        } else {
            return std::nullopt;
        }
    }
    arguments.platform.bundleIdentifier = "com.example.vorna-console";
    arguments.platform.bundleShortVersion = "1.0";
    arguments.platform.bundleVersion = "1";
    return arguments;
}

void printConfiguration(std::string_view when) {
    std::cout << when
              << ": welcome_text = " << VornaCoreSDK::GetRemoteConfig("welcome_text", "(default) Welcome!")
              << ", paywall_name = " << VornaCoreSDK::GetRemoteConfig("paywall_name", "(default) main")
              << std::endl;
}

int run(const Arguments& arguments) {
    std::ifstream file;
    if (!arguments.file.empty()) {
        file.open(arguments.file);
        if (!file) {
            std::cerr << "vorna-console: cannot read " << arguments.file << '\n';
            return EXIT_FAILURE;
        }
    }
    std::istream& input = arguments.file.empty() ? std::cin : file;

    VornaCoreSDK::debug = arguments.debug;
    vorna::Platform platform = vorna::makePlatform(arguments.platform);
    const auto http = std::make_shared<CountingHttpClient>(platform.httpClient);
    platform.httpClient = http;
    VornaCoreSDK::UsePlatform(platform);

    auto& center = vorna::NotificationCenter::defaultCenter();
    std::uint64_t passedOn = 0;
    const auto list =
        center.addObserver(VornaCoreSDK::EventListUpdated, [&](const auto&) { http->count(passedOn); });
    const auto configs =
        center.addObserver(VornaCoreSDK::RemoteConfigsReady, [](const vorna::Notification& notification) {
            const bool fetched = std::get<bool>(notification.userInfo.at("remoteConfigFetched"));
            printConfiguration(fetched ? "configuration fetched" : "configuration not available");
        });

    VornaCoreSDK::Init(arguments.appID);
    printConfiguration("configuration at start");
    center.post(vorna::UIApplicationDidFinishLaunchingNotification);
    center.post(vorna::UIApplicationDidBecomeActiveNotification);

    std::uint64_t recorded = 1;  // "sdk_initialized"
    bool allValid = true;
    std::uint64_t number = 0;
    for (std::string line; std::getline(input, line);) {
        ++number;
        if (line.empty() || line.front() == '#') {
            continue;
        }
        if (recordLine(line)) {
            ++recorded;
        } else {
            std::cerr << "vorna-console: line " << number << " is invalid: " << line << '\n';
            allValid = false;
        }
    }

    center.post(vorna::UIApplicationWillResignActiveNotification);
    ++recorded;  // "vorna_session"
    const bool idle = http->waitUntilIdle(passedOn, recorded, std::chrono::seconds(90));
    std::cout << recorded << " events recorded, "
              << (idle ? "all requests completed" : "some requests timed out") << std::endl;
    return allValid && idle ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

int main(int count, char** texts) {
    const std::optional<Arguments> arguments = parse(count, texts);
    if (!arguments) {
        std::cerr << usage;
        return 2;
    }
    return run(*arguments);
}
