// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Every operation of the facade, to compare a binding's with. The tests compare this table with the facade's
/// header, so that a new operation fails them until it is bound.

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace vorna::bindings {

/// The effect of a call: events, screen operations, the state that it changes or returns.
using Outcome = std::vector<std::string>;

/// The operations by name and arguments, as in "Event(name,customValue)".
struct FacadeOperation {
    std::string signature;
    /// Calls it with the table's arguments and returns its result as text; "absent" if there is none.
    std::function<std::string()> call;
};

const std::vector<FacadeOperation>& facadeOperations();

/// The signatures in the facade's header, in order.
std::vector<std::string> declaredOperations();

/// The names of the notification constants in it.
std::map<std::string, std::string> declaredNotifications();

/// The name of the operation without its arguments, and the arguments.
std::string nameOf(const std::string& signature);
std::vector<std::string> argumentsOf(const std::string& signature);

/// Runs the calls one by one on a platform of fakes and returns the effect of each. Once per process.
struct Outcomes {
    Outcome ofBinding;
    Outcome ofFacade;
};

Outcomes compare(const std::string& signature, const std::function<std::string()>& binding);

/// The same for operations that return a value, after `Init` and `SetAdid` and with a configuration.
Outcomes compareResults(const std::string& signature, const std::function<std::string()>& binding);

/// "absent" or the text.
std::string described(const std::optional<std::string>& text);

/// The platform options of the table.
inline constexpr const char* serviceURL = "https://binding.test";

}  // namespace vorna::bindings
