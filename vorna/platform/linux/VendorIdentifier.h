// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The identifier that all applications of one vendor see on this device, and no other vendor's.

#include <optional>
#include <string>
#include <string_view>

namespace vorna {

/// The vendor's part of an application's identifier: all but the last component of "com.example.app". An
/// identifier without such parts is its own vendor.
std::string_view vendorOf(std::string_view bundleIdentifier) noexcept;

/// Derived from the machine's identifier by a keyed hash, which cannot be undone: the vendor's name hashed by
/// HMAC-SHA256 under the machine's identifier as the key, written as an upper-case UUID of version 8. The
/// argument is the contents of a machine-id file; absent when that holds no identifier (yet).
std::optional<std::string> identifierForVendor(std::string_view machineId, std::string_view vendor);

/// The same from the files of the system under the root folder. Absent where the machine has no identifier.
std::optional<std::string> readIdentifierForVendor(const std::string& root, std::string_view vendor);

}  // namespace vorna
