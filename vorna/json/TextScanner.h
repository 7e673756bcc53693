// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Walks through a text that is known to be JSON, to find out where things stand. Each offset that is handed
/// in must be one that such a walk gives; nothing here recurses.

#include <vorna/json/Kind.h>

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>

namespace vorna::json {

/// A step down the tree: the key of a member or the index of an element.
using PathStep = std::variant<std::string_view, std::size_t>;

/// The first byte at or after `at` that is not white space; the end of the text when there is none.
std::size_t behindSpace(std::string_view text, std::size_t at) noexcept;

/// The byte behind the string whose opening quotation mark is at `at`.
std::size_t behindString(std::string_view text, std::size_t at) noexcept;

/// The byte behind the value that begins at `at`.
std::size_t behindValue(std::string_view text, std::size_t at) noexcept;

/// What begins at `at`.
Kind kindAt(std::string_view text, std::size_t at) noexcept;

/// A key or a string, given with its quotation marks, as the text that it stands for.
std::string unquoted(std::string_view quoted);

/// Where the value begins that the path leads to, of equal keys along the last. Absent when there is none.
std::optional<std::size_t> findValue(std::string_view text, std::span<const PathStep> path);

/// Adds a step to a path, as ".price" or "[1]" in "paidProducts[1].price". A key that is more than ASCII
/// letters, digits, '_', '-' and '$' is quoted, as in ["a.b"].
void appendStep(std::string& path, const PathStep& step);

/// The whole of it; empty for no step.
std::string pathText(std::span<const PathStep> path);

}  // namespace vorna::json
