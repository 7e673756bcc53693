// SPDX-License-Identifier: Apache-2.0
#include <tests/bindings/FacadeOperations.h>
#include <tests/support/RecordedEvents.h>
#include <tests/support/ui/ScreenHost.h>

#include <vorna/core/VornaCoreSDK.h>
#include <vorna/platform/NotificationCenter.h>
#include <vorna/qml/registerModule.h>

#include <QtCore/QThread>
#include <QtQml/QQmlComponent>
#include <QtQml/QQmlEngine>
#include <QtTest/QSignalSpy>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <regex>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace vorna::bindings {
namespace {

using support::eventually;
using testing::HasSubstr;
using testing::UnorderedElementsAreArray;

/// A call as written in QML after "VornaCoreSDK.".
const std::map<std::string, std::string>& operations() {
    static const std::map<std::string, std::string> table = {
        {"UsePlatform(platform)",
         R"(UsePlatformWithOptions({"serviceURL": "https://binding.test", "credentialStore": "file"}))"},
        {"Init(appID)", R"(InitWithAppID("my-app"))"},
        {"GetAppID()", "GetAppID()"},
        {"GetUserID()", "GetUserID()"},
        {"GetAdid()", "GetAdid()"},
        {"SetAdid(adid)", R"(SetAdidWithAdid("adid-1"))"},
        {"GetInstallTime()", "GetInstallTime()"},
        {"CurrentTimestamp()", "CurrentTimestamp()"},
        {"GetRemoteConfig(key,defaultValue)",
         R"(GetRemoteConfigWithKeyDefaultValue("anahtar", "varsayılan 🎉"))"},
        {"Event(name)", R"(EventWithName("a"))"},
        {"Event(name,customValue)", R"(EventWithNameCustomValue("a", "değer"))"},
        {"Event(name,startTime,endtime,customValue)",
         R"(EventWithNameStartTimeEndtimeCustomValue("a", 200, 100, "değer"))"},
        {"OnboardingStart()", "OnboardingStart()"},
        {"OnboardingStep(step)", R"(OnboardingStepWithStep("3"))"},
        {"OnboardingFinish()", "OnboardingFinish()"},
        {"LoginSuccess(source)", R"(LoginSuccessWithSource("mail"))"},
        {"InterstitialAdShown()", "InterstitialAdShown()"},
        {"InterstitialAdClosed()", "InterstitialAdClosed()"},
        {"RewardedAdShown()", "RewardedAdShown()"},
        {"RewardedAdClosed()", "RewardedAdClosed()"},
        {"RewardedAdClaimed()", "RewardedAdClaimed()"},
        {"BannerAdShown()", "BannerAdShown()"},
        {"NotificationPermissionGranted()", "NotificationPermissionGranted()"},
        {"NotificationPermissionDenied()", "NotificationPermissionDenied()"},
        {"LocationPermissionGranted()", "LocationPermissionGranted()"},
        {"LocationPermissionDenied()", "LocationPermissionDenied()"},
        {"ATTPromptShown()", "ATTPromptShown()"},
        {"ATTPermissionGranted()", "ATTPermissionGranted()"},
        {"ATTPermissionDenied()", "ATTPermissionDenied()"},
        {"PaywallShown(paywall)", R"(PaywallShownWithPaywall("ana ekran"))"},
        {"PaywallClosed(paywall)", R"(PaywallClosedWithPaywall("main"))"},
        {"PaywallAttempted(paywall)", R"(PaywallAttemptedWithPaywall("main"))"},
        {"PaywallPurchased(paywall)", R"(PaywallPurchasedWithPaywall("main"))"},
        {"PaywallCancelled(paywall)", R"(PaywallCancelledWithPaywall("main"))"},
        {"TabClicked(tab)", R"(TabClickedWithTab("ayarlar"))"},
        {"FeatureClicked(feature)", R"(FeatureClickedWithFeature("🎧"))"},
        {"DailyStreakShown()", "DailyStreakShown()"},
        {"DailyStreakClaimed()", "DailyStreakClaimed()"},
        {"DailyStreakClosed()", "DailyStreakClosed()"},
        {"ShowPaywall(jsonString)", R"(ShowPaywallWithJsonString("{}"))"},
        {"ClosePaywall()", "ClosePaywall()"},
        {"ShowPaidProductLoadingScreen()", "ShowPaidProductLoadingScreen()"},
        {"ClosePaidProductLoadingScreen()", "ClosePaidProductLoadingScreen()"},
        {"ShowOnboarding(jsonString)", R"(ShowOnboardingWithJsonString("[]"))"},
        {"CloseOnboarding()", "CloseOnboarding()"},
        {"ShowEventList()", "ShowEventList()"},
        {"CloseEventList()", "CloseEventList()"},
    };
    return table;
}

/// An engine with the module loaded.
class Qml {
  public:
    Qml() {
        qml::registerModule();
        singleton_ = qvariant_cast<QObject*>(evaluate("VornaCoreSDK"));
        EXPECT_NE(singleton_, nullptr);
    }

    QVariant evaluate(const std::string& expression) {
        QQmlComponent component(&engine_);
        component.setData(QByteArray::fromStdString("import QtQml\nimport Vorna\nQtObject { function run() { "
                                                    "return " +
                                                    expression + " } }"),
                          QUrl());
        const std::unique_ptr<QObject> object(component.isReady() ? component.create() : nullptr);
        EXPECT_NE(object, nullptr) << component.errorString().toStdString();
        QVariant result;
        EXPECT_TRUE(object && QMetaObject::invokeMethod(object.get(), "run", Q_RETURN_ARG(QVariant, result)));
        return result;
    }

    /// Calls an operation and returns its result as text; empty if it returns nothing.
    std::string call(const std::string& signature) {
        const QVariant result = evaluate("VornaCoreSDK." + operations().at(signature));
        const std::string name = nameOf(signature);
        const bool returns = name.starts_with("Get") || name == "CurrentTimestamp";
        if (!result.isValid()) {
            return returns ? "absent" : "";
        }
        return result.typeId() == QMetaType::Double
                   ? std::to_string(static_cast<std::uint64_t>(result.toDouble()))
                   : result.toString().toStdString();
    }

    QObject* singleton() { return singleton_; }

  private:
    QQmlEngine engine_;
    QObject* singleton_ = nullptr;
};

/// "Event(name,customValue)" is "EventWithNameCustomValue" in QML.
std::string inQml(const std::string& signature) {
    if (nameOf(signature) == "UsePlatform") {
        return "UsePlatformWithOptions";
    }
    std::string name = nameOf(signature);
    const char* with = "With";
    for (std::string argument : argumentsOf(signature)) {
        argument.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(argument.front())));
        name += with + argument;
        with = "";
    }
    return name;
}

std::vector<std::string> bound() {
    std::vector<std::string> signatures;
    for (const auto& [signature, call] : operations()) {
        signatures.push_back(signature);
    }
    return signatures;
}

TEST(QmlBinding, HasEveryOperationOfTheFacadeUnderItsName) {
    const std::vector<std::string> declared = declaredOperations();
    ASSERT_GT(declared.size(), 40U);
    EXPECT_THAT(bound(), UnorderedElementsAreArray(declared));
    Qml qml;
    std::set<std::string> methods;
    const QMetaObject& type = *qml.singleton()->metaObject();
    for (int index = type.methodOffset(); index < type.methodCount(); ++index) {
        if (type.method(index).methodType() == QMetaMethod::Method) {
            methods.insert(type.method(index).name().toStdString());
        }
    }
    std::set<std::string> expected{"Attach"};
    for (const std::string& signature : declared) {
        expected.insert(inQml(signature));
        EXPECT_TRUE(operations().at(signature).starts_with(inQml(signature) + "(")) << signature;
    }
    EXPECT_EQ(methods, expected);
}

class QmlOperation : public testing::TestWithParam<std::string> {};

TEST_P(QmlOperation, DoesTheSameAsTheFacades) {
    Qml qml;
    const Outcomes outcomes = compare(GetParam(), [&] { return qml.call(GetParam()); });
    EXPECT_EQ(outcomes.ofBinding, outcomes.ofFacade);
}

INSTANTIATE_TEST_SUITE_P(Operations, QmlOperation, testing::ValuesIn(bound()), [](const auto& testCase) {
    return std::regex_replace(testCase.param, std::regex("\\W"), "_");
});

class QmlResult : public testing::TestWithParam<std::string> {};

TEST_P(QmlResult, IsTheFacadesAfterInit) {
    Qml qml;
    const Outcomes outcomes = compareResults(GetParam(), [&] { return qml.call(GetParam()); });
    EXPECT_EQ(outcomes.ofBinding, outcomes.ofFacade);
    EXPECT_NE(outcomes.ofBinding.front(), "absent");
}

INSTANTIATE_TEST_SUITE_P(Operations, QmlResult,
                         testing::Values("GetAppID()", "GetUserID()", "GetAdid()", "GetInstallTime()",
                                         "CurrentTimestamp()", "GetRemoteConfig(key,defaultValue)"),
                         [](const auto& testCase) { return nameOf(testCase.param); });

struct CustomValueCase {
    const char* name;
    const char* expression;
    const char* recorded;
};

class QmlCustomValue : public testing::TestWithParam<CustomValueCase> {};

TEST_P(QmlCustomValue, IsRecordedAsText) {
    Qml qml;
    const support::RecordedEvents platform;
    qml.evaluate(std::string("VornaCoreSDK.EventWithNameCustomValue(\"a\", ") + GetParam().expression + ")");
    const std::vector<EventData> events = support::RecordedEvents::take();
    ASSERT_EQ(events.size(), 1U);
    EXPECT_EQ(events.front().customValue, GetParam().recorded);
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, QmlCustomValue,
    testing::Values(CustomValueCase{"Undefined", "undefined", ""}, CustomValueCase{"Null", "null", ""},
                    CustomValueCase{"EmptyText", "\"\"", ""}, CustomValueCase{"Number", "7", "7"},
                    CustomValueCase{"Fraction", "0.5", "0.5"}, CustomValueCase{"Boolean", "true", "true"},
                    CustomValueCase{"Emoji", "\"👩‍👩‍👧‍👦\"", "👩‍👩‍👧‍👦"}),
    [](const auto& testCase) { return testCase.param.name; });

struct RefusedCase {
    const char* name;
    const char* expression;
    const char* line;
};

class QmlMisuse : public testing::TestWithParam<RefusedCase> {};

TEST_P(QmlMisuse, LogsALineAndDoesNothing) {
    Qml qml;
    qml.evaluate("VornaCoreSDK.debug = true");
    testing::internal::CaptureStdout();
    qml.evaluate(std::string("VornaCoreSDK.") + GetParam().expression);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), std::string("[VornaSDK] ") + GetParam().line + "\n");
    EXPECT_TRUE(support::RecordedEvents::take().empty());
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, QmlMisuse,
    testing::Values(
        RefusedCase{"UnpairedSurrogate", R"(EventWithName("\ud800"))",
                    "EventWithName: the text has an unpaired surrogate; nothing is done"},
        RefusedCase{"UnpairedSurrogateAsArgument", R"(TabClickedWithTab("\udc00"))",
                    "TabClickedWithTab: the text has an unpaired surrogate; nothing is done"},
        RefusedCase{"ObjectAsCustomValue", R"(EventWithNameCustomValue("a", {"b": 1}))",
                    "EventWithNameCustomValue: the custom value is not text; nothing is done"},
        RefusedCase{"NegativeTime", R"(EventWithNameStartTimeEndtimeCustomValue("a", -1, 0, ""))",
                    "EventWithNameStartTimeEndtimeCustomValue: a time is not a number of seconds since 1970; "
                    "nothing is done"},
        RefusedCase{"NotANumber", R"(EventWithNameStartTimeEndtimeCustomValue("a", 0, NaN, ""))",
                    "EventWithNameStartTimeEndtimeCustomValue: a time is not a number of seconds since 1970; "
                    "nothing is done"},
        RefusedCase{"TooLate",
                    R"(EventWithNameStartTimeEndtimeCustomValue("a", 0, 18446744073709551616, ""))",
                    "EventWithNameStartTimeEndtimeCustomValue: a time is not a number of seconds since 1970; "
                    "nothing is done"},
        RefusedCase{"UnknownOption", R"(UsePlatformWithOptions({"serviceUrl": "https://a.test"}))",
                    "UsePlatformWithOptions: unknown option or value: serviceUrl; nothing is done"},
        RefusedCase{"UnknownStore", R"(UsePlatformWithOptions({"credentialStore": "cupboard"}))",
                    "UsePlatformWithOptions: unknown option or value: credentialStore; nothing is done"},
        RefusedCase{"NoWindow", "Attach(null)", "Attach: the window is null; nothing is done"}),
    [](const auto& testCase) { return testCase.param.name; });

TEST(QmlDebug, ReadsAndWritesTheSwitchAndSignalsChanges) {
    Qml qml;
    QSignalSpy changes(qml.singleton(), SIGNAL(debugChanged()));
    EXPECT_EQ(qml.evaluate("VornaCoreSDK.debug"), QVariant(false));
    qml.evaluate("VornaCoreSDK.debug = true");
    qml.evaluate("VornaCoreSDK.debug = true");
    EXPECT_TRUE(VornaCoreSDK::debug);
    EXPECT_EQ(changes.size(), 1);
}

/// The user info of each notification, and the expected arguments of its signal.
struct SignalCase {
    const char* constant;
    UserInfo carried;
    QVariantList arguments;
};

const std::vector<SignalCase>& signalCases() {
    static const std::vector<SignalCase> table = {
        {"RemoteConfigsReady", {{"remoteConfigFetched", true}}, {true}},
        {"PaidProductClicked", {{"identifier", std::string("ürün 🎉")}}, {QStringLiteral("ürün 🎉")}},
        {"OnboardingScreensFinished", {{"identifier", std::string()}}, {QString()}},
        {"PaywallScreenClosed", {{"success", true}}, {true}},
        {"OnboardingScreenClosed", {{"success", true}}, {true}},
        {"PaywallScreenFinished", {{"identifier", std::string("yearly")}}, {QStringLiteral("yearly")}},
        {"RestorePurchaseClicked", {{"success", true}}, {true}},
        {"EventListUpdated", {}, {}},
    };
    return table;
}

TEST(QmlSignals, ExistForEveryNotification) {
    std::set<std::string> inTable;
    for (const SignalCase& testCase : signalCases()) {
        inTable.insert(testCase.constant);
    }
    std::set<std::string> declared;
    for (const auto& [constant, name] : declaredNotifications()) {
        declared.insert(constant);
    }
    EXPECT_EQ(inTable, declared);
}

class QmlSignal : public testing::TestWithParam<SignalCase> {};

TEST_P(QmlSignal, ArrivesOnTheMainThreadWithItsUserInfo) {
    Qml qml;
    std::string name = GetParam().constant;
    name.front() = static_cast<char>(std::tolower(static_cast<unsigned char>(name.front())));
    const QMetaObject& type = *qml.singleton()->metaObject();
    QMetaMethod signal;
    for (int index = 0; index < type.methodCount(); ++index) {
        if (type.method(index).name().toStdString() == name) {
            signal = type.method(index);
        }
    }
    ASSERT_EQ(signal.methodType(), QMetaMethod::Signal) << name;
    QSignalSpy received(qml.singleton(), signal);
    const std::string notification = declaredNotifications().at(GetParam().constant);
    std::thread([&] { NotificationCenter::defaultCenter().post(notification, GetParam().carried); }).join();
    EXPECT_EQ(received.size(), 0) << "not on the thread that posts";
    ASSERT_TRUE(eventually([&] { return received.size() == 1; }));
    EXPECT_EQ(received.front(), GetParam().arguments);

    NotificationCenter::defaultCenter().post(notification, GetParam().carried);
    EXPECT_EQ(received.size(), 2) << "synchronously on the main thread";
}

INSTANTIATE_TEST_SUITE_P(Notifications, QmlSignal, testing::ValuesIn(signalCases()),
                         [](const auto& testCase) { return testCase.param.constant; });

TEST(QmlSignals, EndWithTheEngine) {
    std::thread poster;
    std::atomic<bool> ends = false;
    {
        Qml qml;
        poster = std::thread([&] {
            while (!ends) {
                NotificationCenter::defaultCenter().post(VornaCoreSDK::EventListUpdated);
            }
        });
        support::letTimePass(std::chrono::milliseconds(50));
    }
    support::letTimePass(std::chrono::milliseconds(50));
    ends = true;
    poster.join();
}

}  // namespace
}  // namespace vorna::bindings
