// SPDX-License-Identifier: Apache-2.0
#include <vorna/device/KeychainHelper.h>

#include <vorna/json/Decoding.h>
#include <vorna/json/Encoding.h>
#include <vorna/platform/FatalError.h>
#include <vorna/platform/Log.h>
#include <vorna/text/Utf8.h>

#include <tuple>
#include <utility>

namespace vorna {

namespace {

std::string number(CredentialStatus status) {
    return std::to_string(static_cast<std::int32_t>(status));
}

}  // namespace

KeychainHelper::KeychainHelper(std::shared_ptr<CredentialStore> store, std::shared_ptr<const Clock> clock,
                               MakeUserIdentifier makeUserIdentifier)
    : store_(std::move(store)),
      clock_(std::move(clock)),
      makeUserIdentifier_(std::move(makeUserIdentifier)) {
    store_->recogniseWholeValues(isRecord);
}

KeyChainData KeychainHelper::loadOrCreateIdentity() const {
    if (const std::optional<std::string> text = read()) {
        std::optional<KeyChainData> stored = decode(*text);
        if (!stored) {
            fatalError("the stored identity cannot be decoded");
        }
        return std::move(*stored);
    }
    KeyChainData made;
    made.userId = makeUserIdentifier_(clock_->now());
    made.installTime = wholeSeconds(clock_->now());
    const std::string text = encode(made.userId, made.installTime).value_or("");
    log::debug({"KeyChain Data -> ", text});
    save(text);
    return made;
}

std::optional<std::string> KeychainHelper::read() const {
    Result<std::string, CredentialStatus> text = store_->read(service, account);
    if (text && utf8::isValid(*text)) {
        return *std::move(text);
    }
    // Text that is not UTF-8 was read without an error, hence 0.
    log::always({"Error reading from Keychain: ", text ? "0" : number(text.error())});
    return std::nullopt;
}

void KeychainHelper::save(std::string_view value) const {
    if (!utf8::isValid(value)) {
        return;
    }
    // Whether the text is saved depends only on the addition.
    std::ignore = store_->remove(service, account);
    if (const Result<void, CredentialStatus> added = store_->add(service, account, value); !added) {
        log::always({"Error saving to Keychain: ", number(added.error())});
    }
}

bool KeychainHelper::isRecord(std::string_view text) {
    return utf8::isValid(text) && json::decode<KeyChainData>(text);
}

std::optional<std::string> KeychainHelper::encode(std::string_view userId, std::uint64_t installTime) {
    json::Encoded encoded = json::encode(KeyChainData{std::string(userId), installTime});
    if (!encoded) {
        log::debug({"Error encoding keyChainData: ", json::describe(encoded.error())});
        return std::nullopt;
    }
    return *std::move(encoded);
}

std::optional<KeyChainData> KeychainHelper::decode(std::string_view text) {
    json::Decoded<KeyChainData> decoded = json::decode<KeyChainData>(text);
    if (!decoded) {
        log::debug({"Error decoding keyChainData: ", json::describe(decoded.error(), text)});
        return std::nullopt;
    }
    return *std::move(decoded);
}

}  // namespace vorna
