// SPDX-License-Identifier: Apache-2.0
#include <vorna/device/KeychainHelper.h>

#include <tests/support/InMemoryCredentialStore.h>
#include <tests/support/SettableClock.h>

#include <vorna/platform/Log.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

namespace vorna {

std::ostream& operator<<(std::ostream& stream, const KeyChainData& data) {
    return stream << "(" << data.userId << ", " << data.installTime << ")";
}

namespace {

using support::InMemoryCredentialStore;
using support::SettableClock;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr std::string_view service = "io.vorna.vornasdk";
constexpr std::string_view account = "userDetails";
constexpr double now = 1'704'067'200.75;
const std::string identifier = "01HK153X00ABCDEFGHJKMNPQRS";
const KeyChainData identity{identifier, 1'704'067'200};
const std::string record = R"({"userId":"01HK153X00ABCDEFGHJKMNPQRS","installTime":1704067200})";

class Keychain : public ::testing::Test {
  protected:
    std::shared_ptr<InMemoryCredentialStore> store = std::make_shared<InMemoryCredentialStore>();
    std::shared_ptr<SettableClock> clock = std::make_shared<SettableClock>(now);
    std::optional<Date> dateOfIdentifier;
    std::string nextIdentifier = identifier;

    KeychainHelper helper{store, clock, [this](Date date) {
                              dateOfIdentifier = date;
                              return nextIdentifier;
                          }};

    std::optional<std::string> stored() const { return store->value(service, account); }

    void put(std::string_view text) { store->put(service, account, text); }

    /// Its output while it loads or creates the identity.
    std::string outputOfLoading(std::optional<KeyChainData> expected = std::nullopt) {
        ::testing::internal::CaptureStdout();
        const KeyChainData loaded = helper.loadOrCreateIdentity();
        std::string output = ::testing::internal::GetCapturedStdout();
        if (expected) {
            EXPECT_EQ(loaded, *expected);
        }
        return output;
    }
};

TEST_F(Keychain, CreatesAndStoresAnIdentityOnTheFirstRun) {
    EXPECT_EQ(outputOfLoading(identity), "Error reading from Keychain: -25300\n");
    EXPECT_EQ(stored(), record);
    EXPECT_THAT(store->operations(), ElementsAre("read", "remove", "add"));
    for (const InMemoryCredentialStore::Call& call : store->calls()) {
        EXPECT_EQ(call.service, service);
        EXPECT_EQ(call.account, account);
    }
}

TEST_F(Keychain, ReadsTheClockOnceForTheIdentifierAndOnceForTheInstallTime) {
    clock->tickBy(1.5);
    EXPECT_EQ(helper.loadOrCreateIdentity().installTime, 1'704'067'202U);
    EXPECT_EQ(dateOfIdentifier, Date{now});
}

TEST_F(Keychain, LogsTheNewRecordWhileDebugIsOn) {
    log::enabled = true;
    EXPECT_EQ(outputOfLoading(),
              "Error reading from Keychain: -25300\n[VornaSDK] KeyChain Data -> " + record + "\n");
}

TEST_F(Keychain, ReturnsTheSameIdentityOnLaterRunsAndWritesNothing) {
    put(record);
    nextIdentifier = "another";
    clock->set(now + 1'000'000);
    log::enabled = true;
    EXPECT_EQ(outputOfLoading(identity), "");
    EXPECT_THAT(store->operations(), ElementsAre("read"));
    EXPECT_FALSE(dateOfIdentifier);
}

TEST_F(Keychain, ReadsTheRecordThatItWrote) {
    const KeyChainData made = helper.loadOrCreateIdentity();
    nextIdentifier = "another";
    EXPECT_EQ(helper.loadOrCreateIdentity(), made);
}

TEST_F(Keychain, ReadsARecordWithReorderedAndUnknownFieldsAndWhiteSpace) {
    put(" {\n\t\"more\": [1, {}], \"installTime\": 1704067200.0,\r\n \"userId\": "
        "\"01HK153X00ABCDEFGHJK\\u004dNPQRS\"} ");
    EXPECT_EQ(helper.loadOrCreateIdentity(), identity);
}

TEST_F(Keychain, AcceptsAnyTextAsUserIdentifier) {
    put(R"({"userId":"","installTime":18446744073709551615})");
    EXPECT_EQ(helper.loadOrCreateIdentity(), (KeyChainData{"", 18446744073709551615U}));
}

TEST_F(Keychain, ReplacesInvalidText) {
    for (const std::string_view bytes :
         {"\xFF\xFE{}", "{\"userId\":\"\xC3\",\"installTime\":1}", "\xC0\x80"}) {
        put(bytes);
        store->forgetCalls();
        EXPECT_EQ(outputOfLoading(identity), "Error reading from Keychain: 0\n");
        EXPECT_EQ(stored(), record);
        EXPECT_THAT(store->operations(), ElementsAre("read", "remove", "add"));
    }
}

TEST_F(Keychain, ReplacesAnIdentityThatCannotBeReadForAnyReason) {
    for (const CredentialStatus status :
         {CredentialStatus::interactionNotAllowed, CredentialStatus::notAvailable,
          CredentialStatus::notPermitted, CredentialStatus::notTrusted, CredentialStatus{-1},
          CredentialStatus{7}}) {
        put("an identity behind a lock");
        store->forgetCalls();
        store->readStatus(status);
        EXPECT_EQ(outputOfLoading(identity),
                  "Error reading from Keychain: " + std::to_string(static_cast<int>(status)) + "\n");
        EXPECT_EQ(stored(), record);
        EXPECT_THAT(store->operations(), ElementsAre("read", "remove", "add"));
    }
}

TEST_F(Keychain, UsesAnIdentityThatCannotBeSavedForThisRun) {
    store->addStatus(CredentialStatus::notPermitted);
    EXPECT_EQ(outputOfLoading(identity),
              "Error reading from Keychain: -25300\nError saving to Keychain: -34018\n");
    nextIdentifier = "01HK153X01ABCDEFGHJKMNPQRS";
    EXPECT_EQ(helper.loadOrCreateIdentity().userId, nextIdentifier);
}

TEST_F(Keychain, AddsEvenIfNothingCouldBeRemoved) {
    store->removeStatus(CredentialStatus::interactionNotAllowed);
    EXPECT_EQ(outputOfLoading(identity), "Error reading from Keychain: -25300\n");
    EXPECT_EQ(stored(), record);
}

TEST_F(Keychain, DoesNotSaveTextThatIsNotUTF8) {
    helper.save("\xFF");
    EXPECT_THAT(store->calls(), IsEmpty());
}

TEST_F(Keychain, ReplacesTheStoredTextWhenSaving) {
    put("old");
    helper.save("new");
    EXPECT_EQ(stored(), "new");
    EXPECT_EQ(helper.read(), "new");
}

TEST_F(Keychain, SavesEmptyTextWhenTheRecordCannotBeEncoded) {
    nextIdentifier = "\xFF";
    log::enabled = true;
    const std::string output = outputOfLoading(KeyChainData{"\xFF", identity.installTime});
    EXPECT_THAT(output, HasSubstr("[VornaSDK] Error encoding keyChainData: userId"));
    EXPECT_THAT(output, HasSubstr("[VornaSDK] KeyChain Data -> \n"));
    EXPECT_EQ(stored(), "");
    EXPECT_DEATH(helper.loadOrCreateIdentity(), "Fatal error: the stored identity cannot be decoded");
}

TEST_F(Keychain, ExplainsAnInvalidRecordOnlyWhileDebugIsOn) {
    ::testing::internal::CaptureStdout();
    EXPECT_EQ(KeychainHelper::decode("{}"), std::nullopt);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
    log::enabled = true;
    ::testing::internal::CaptureStdout();
    EXPECT_EQ(KeychainHelper::decode("{}"), std::nullopt);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(),
              "[VornaSDK] Error decoding keyChainData: userId: missing\n");
}

TEST_F(Keychain, TellsTheStoreWhatARecordIsWithoutLoggingAnything) {
    class Curious final : public CredentialStore {
      public:
        Result<std::string, CredentialStatus> read(std::string_view, std::string_view) override {
            return Unexpected(CredentialStatus::itemNotFound);
        }

        Result<void, CredentialStatus> remove(std::string_view, std::string_view) override { return {}; }

        Result<void, CredentialStatus> add(std::string_view, std::string_view, std::string_view) override {
            return {};
        }

        void recogniseWholeValues(const IsWhole& isWhole) override { isWholeValue = isWhole; }

        IsWhole isWholeValue;
    };

    const auto curious = std::make_shared<Curious>();
    const KeychainHelper another(curious, clock, [](Date) { return identifier; });
    ASSERT_TRUE(curious->isWholeValue);
    log::enabled = true;
    ::testing::internal::CaptureStdout();
    EXPECT_TRUE(curious->isWholeValue(record));
    EXPECT_TRUE(curious->isWholeValue(R"({"userId":"","installTime":0})"));
    for (const std::string_view text : {"", "{}", "{\"userId\":\"a\"}", "\xFF"}) {
        EXPECT_FALSE(curious->isWholeValue(text)) << text;
    }
    EXPECT_FALSE(curious->isWholeValue(std::string_view(record).substr(0, record.size() - 1)));
    EXPECT_FALSE(curious->isWholeValue("{\"userId\":\"\xC3\",\"installTime\":1}"));
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
}

TEST_F(Keychain, EncodesTheTwoKeysAndNothingElse) {
    EXPECT_EQ(KeychainHelper::encode("a \"quoted\" Grüße", std::numeric_limits<std::uint64_t>::max()),
              R"({"userId":"a \"quoted\" Grüße","installTime":18446744073709551615})");
}

struct Record {
    const char* name;
    std::string text;
};

std::ostream& operator<<(std::ostream& stream, const Record& row) {
    return stream << row.name;
}

std::string repeated(std::string_view text, std::size_t count) {
    std::string result;
    for (std::size_t index = 0; index < count; ++index) {
        result += text;
    }
    return result;
}

class UndecodableRecordDeathTest : public Keychain, public ::testing::WithParamInterface<Record> {};

TEST_P(UndecodableRecordDeathTest, AbortsAndLeavesItStored) {
    put(GetParam().text);
    EXPECT_DEATH(helper.loadOrCreateIdentity(),
                 "^\\[VornaSDK\\] Fatal error: the stored identity cannot be decoded");
    EXPECT_EQ(stored(), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Keychain, UndecodableRecordDeathTest,
    ::testing::Values(Record{"Empty", ""}, Record{"EmptyObject", "{}"}, Record{"Null", "null"},
                      Record{"NoObject", R"(["x",1])"}, Record{"NoInstallTime", R"({"userId":"x"})"},
                      Record{"NoUserId", R"({"installTime":1})"},
                      Record{"OtherCase", R"({"UserId":"x","InstallTime":1})"},
                      Record{"NumberForUserId", R"({"userId":1,"installTime":1})"},
                      Record{"NullForUserId", R"({"userId":null,"installTime":1})"},
                      Record{"TextForInstallTime", R"({"userId":"x","installTime":"1"})"},
                      Record{"NegativeInstallTime", R"({"userId":"x","installTime":-1})"},
                      Record{"FractionalInstallTime", R"({"userId":"x","installTime":1.5})"},
                      Record{"InstallTimeBeyond64Bits",
                             R"({"userId":"x","installTime":18446744073709551616})"},
                      Record{"CutShort", R"({"userId":"x","install)"},
                      Record{"MoreAfterIt", R"({"userId":"x","installTime":1}{})"},
                      Record{"ByteOrderMark", "\xEF\xBB\xBF{\"userId\":\"x\",\"installTime\":1}"},
                      Record{"ZeroBytes", std::string(64, '\0')},
                      Record{"OneMebibyte", std::string(std::size_t{1024} * 1024, 'x')},
                      Record{"OneMebibyteOfJSON", "[" + repeated("1,", std::size_t{512} * 1024) + "1]"},
                      Record{"DeeplyNested", repeated("[", 1'000'000)},
                      Record{"DeeplyNestedUserId", R"({"userId":)" + repeated("{\"a\":", 100'000) + "1" +
                                                       repeated("}", 100'000) + "}"}),
    [](const auto& row) { return row.param.name; });

TEST_F(Keychain, ReadsARecordOfAMebibyte) {
    const std::string userId(std::size_t{1024} * 1024, 'x');
    put(R"({"installTime":1,"userId":")" + userId + "\"}");
    EXPECT_TRUE(helper.loadOrCreateIdentity().userId == userId);
}

using KeychainDeathTest = Keychain;

TEST_F(KeychainDeathTest, AbortsIfTheClockIsBroken) {
    for (const double reading : {std::numeric_limits<double>::quiet_NaN(),
                                 std::numeric_limits<double>::infinity(), -1.0, std::ldexp(1.0, 64)}) {
        clock->set(reading);
        EXPECT_DEATH(helper.loadOrCreateIdentity(), "Fatal error: the clock") << reading;
    }
    EXPECT_EQ(stored(), std::nullopt);
}

TEST_F(Keychain, TruncatesATimeJustBeforeTheEpochToZero) {
    clock->set(-0.5);
    EXPECT_EQ(helper.loadOrCreateIdentity().installTime, 0U);
}

}  // namespace
}  // namespace vorna
