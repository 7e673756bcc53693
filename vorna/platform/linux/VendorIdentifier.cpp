// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/linux/VendorIdentifier.h>

#include <vorna/platform/linux/SystemFile.h>

#include <glib.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace vorna {

namespace {

using MachineId = std::array<std::uint8_t, 16>;

std::optional<MachineId> parsedMachineId(std::string_view text) {
    MachineId id = {};
    const std::string_view digits = trimmed(text);
    if (digits.size() != 2 * id.size()) {
        return std::nullopt;
    }
    for (std::size_t index = 0; index < id.size(); ++index) {
        const char* const first = digits.data() + 2 * index;
        const auto [stop, error] = std::from_chars(first, first + 2, id[index], 16);
        if (error != std::errc{} || stop != first + 2) {
            return std::nullopt;
        }
    }
    const bool isNull = std::ranges::all_of(id, [](std::uint8_t byte) { return byte == 0; });
    return isNull ? std::nullopt : std::optional(id);
}

constexpr std::size_t digestSize = 32;

std::array<std::uint8_t, digestSize> keyedHash(const MachineId& key, std::string_view message) {
    const std::unique_ptr<GHmac, decltype(&g_hmac_unref)> hmac(
        g_hmac_new(G_CHECKSUM_SHA256, key.data(), key.size()), g_hmac_unref);
    g_hmac_update(hmac.get(), reinterpret_cast<const guchar*>(message.data()),
                  static_cast<gssize>(message.size()));
    std::array<std::uint8_t, digestSize> digest = {};
    gsize length = digest.size();
    g_hmac_get_digest(hmac.get(), digest.data(), &length);
    return digest;
}

std::string uuidText(const std::array<std::uint8_t, digestSize>& digest) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    for (std::size_t index = 0; index < 16; ++index) {
        unsigned byte = digest[index];
        if (index == 6) {
            byte = (byte & 0x0FU) | 0x80U;  // version 8: vendor-specific
        } else if (index == 8) {
            byte = (byte & 0x3FU) | 0x80U;  // the variant of RFC 9562
        }
        if (index == 4 || index == 6 || index == 8 || index == 10) {
            text += '-';
        }
        text += digits[byte >> 4U];
        text += digits[byte & 0x0FU];
    }
    return text;
}

}  // namespace

std::string_view vendorOf(std::string_view bundleIdentifier) noexcept {
    const std::size_t dot = bundleIdentifier.rfind('.');
    return dot == 0 ? bundleIdentifier : bundleIdentifier.substr(0, dot);
}

std::optional<std::string> identifierForVendor(std::string_view machineId, std::string_view vendor) {
    const std::optional<MachineId> key = parsedMachineId(machineId);
    return key ? std::optional(uuidText(keyedHash(*key, vendor))) : std::nullopt;
}

std::optional<std::string> readIdentifierForVendor(const std::string& root, std::string_view vendor) {
    for (const char* const path : {"/etc/machine-id", "/var/lib/dbus/machine-id"}) {
        if (const auto contents = readSystemFile(root + path)) {
            if (auto identifier = identifierForVendor(*contents, vendor)) {
                return identifier;
            }
        }
    }
    return std::nullopt;
}

}  // namespace vorna
