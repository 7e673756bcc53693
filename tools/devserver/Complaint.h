// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <variant>

namespace vorna::devserver {

/// Why something a developer handed over (a document, a fault, an option) was not accepted: one sentence for
/// people, without a final dot.
struct Complaint {
    std::string text;
};

/// Either the value that was read, or why it could not be.
template <class Value>
using Reading = std::variant<Value, Complaint>;

}  // namespace vorna::devserver
