// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The identifier that only the applications of one vendor share on this device.

#include <optional>
#include <string>
#include <string_view>

namespace vorna {

/// Returns the vendor's part of an application's identifier: all but the last component of "com.example.app".
/// An identifier without components is its own vendor.
std::string_view vendorOf(std::string_view bundleIdentifier) noexcept;

/// Derives the identifier irreversibly from the machine's: HMAC-SHA256 of the vendor's name with the
/// machine's identifier as the key, as an upper-case UUID of version 8. The first argument is the contents of
/// a machine-id file; std::nullopt if they are not a valid identifier, as before the first boot completes.
std::optional<std::string> identifierForVendor(std::string_view machineId, std::string_view vendor);

/// Does the same for the files of the system under the root folder. std::nullopt if the machine has no
/// identifier.
std::optional<std::string> readIdentifierForVendor(const std::string& root, std::string_view vendor);

}  // namespace vorna
