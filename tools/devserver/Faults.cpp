// SPDX-License-Identifier: Apache-2.0
#include <tools/devserver/Faults.h>

#include <tools/common/Number.h>
#include <tools/devserver/Console.h>
#include <tools/devserver/JsonText.h>

#include <boost/json/serialize.hpp>

#include <algorithm>
#include <utility>

namespace vorna::devserver {
namespace {

namespace json = boost::json;

constexpr std::uint64_t longestDelay = 24ULL * 60 * 60 * 1000;

// A fault as written, not yet validated.
struct Draft {
    std::optional<std::string> path;
    std::optional<std::uint64_t> count;
    std::optional<std::uint64_t> delay;
    std::optional<std::uint64_t> status;
    std::optional<std::string> location;
    std::optional<std::string> body;
    bool drop = false;
    bool reset = false;
    bool hang = false;
    bool cutBody = false;
};

bool hasControlCharacter(std::string_view text) {
    return std::any_of(text.begin(), text.end(), [](char character) {
        return static_cast<unsigned char>(character) < 0x20 || character == 0x7F;
    });
}

constexpr bool allowsNoBody(std::uint64_t status) {
    return status == 204 || status == 304;
}

Result<Fault, FaultError> checked(Draft draft) {
    if (draft.path && !draft.path->starts_with('/')) {
        return Unexpected(FaultRule::pathBeginsWithSlash);
    }
    if (draft.path && isControlPath(*draft.path)) {
        return Unexpected(FaultRule::pathIsNotControl);
    }
    if (draft.count == 0U) {
        return Unexpected(FaultRule::countIsPositive);
    }
    if (draft.delay.value_or(0) > longestDelay) {
        return Unexpected(FaultRule::delayIsAtMostADay);
    }
    if (draft.status && (*draft.status < 200 || *draft.status > 999)) {
        return Unexpected(FaultRule::statusIsInRange);
    }
    if (draft.location && (draft.location->empty() || hasControlCharacter(*draft.location))) {
        return Unexpected(FaultRule::locationIsHeaderValue);
    }
    if (draft.location && !draft.status) {
        return Unexpected(FaultRule::locationNeedsStatus);
    }
    const bool answers = draft.status || draft.body;
    if (static_cast<int>(draft.drop) + static_cast<int>(draft.reset) + static_cast<int>(draft.hang) +
            static_cast<int>(answers) >
        1) {
        return Unexpected(FaultRule::oneActionOnly);
    }
    if (draft.cutBody && (draft.drop || draft.reset || draft.hang)) {
        return Unexpected(FaultRule::cutBodyNeedsBody);
    }
    if (draft.status && allowsNoBody(*draft.status) && (draft.cutBody || draft.body)) {
        return Unexpected(FaultRule::statusAllowsBody);
    }
    if (!answers && !draft.drop && !draft.reset && !draft.hang && !draft.cutBody && !draft.delay) {
        return Unexpected(FaultRule::someActionIsNeeded);
    }

    Fault fault;
    fault.path = draft.path.value_or("");
    fault.count = draft.count;
    fault.delay = std::chrono::milliseconds(draft.delay.value_or(0));
    fault.cutBody = draft.cutBody;
    if (answers) {
        fault.action = AnswerWith{static_cast<unsigned>(draft.status.value_or(200)),
                                  draft.location.value_or(""), draft.body.value_or("")};
    } else if (draft.drop) {
        fault.action = DropConnection{};
    } else if (draft.reset) {
        fault.action = ResetConnection{};
    } else if (draft.hang) {
        fault.action = HoldConnection{};
    }
    return fault;
}

// The field that a key sets, by its JSON name; the command line writes "delay" for "delayMilliseconds".
std::optional<std::uint64_t>* numberNamed(Draft& draft, std::string_view key) {
    if (key == "count") {
        return &draft.count;
    }
    if (key == "status") {
        return &draft.status;
    }
    return key == "delayMilliseconds" ? &draft.delay : nullptr;
}

bool* flagNamed(Draft& draft, std::string_view key) {
    if (key == "drop") {
        return &draft.drop;
    }
    if (key == "reset") {
        return &draft.reset;
    }
    if (key == "hang") {
        return &draft.hang;
    }
    return key == "cutBody" ? &draft.cutBody : nullptr;
}

std::optional<std::string>* textNamed(Draft& draft, std::string_view key) {
    if (key == "path") {
        return &draft.path;
    }
    if (key == "location") {
        return &draft.location;
    }
    return key == "body" ? &draft.body : nullptr;
}

Unexpected<UnknownFaultKey> unknown(std::string_view key) {
    return Unexpected(UnknownFaultKey{std::string(key)});
}

std::string_view textOf(FaultRule rule) {
    switch (rule) {
    case FaultRule::pathBeginsWithSlash:
        return "path: must begin with a slash";
    case FaultRule::pathIsNotControl:
        return "path: faults never affect /control";
    case FaultRule::countIsPositive:
        return "count: at least 1 (leave it out for every request)";
    case FaultRule::delayIsAtMostADay:
        return "delay: at most a day";
    case FaultRule::statusIsInRange:
        return "status: from 200 to 999";
    case FaultRule::locationIsHeaderValue:
        return "location: not a header value";
    case FaultRule::locationNeedsStatus:
        return "location: needs a status";
    case FaultRule::oneActionOnly:
        return "a fault has only one of status or body, drop, reset and hang";
    case FaultRule::cutBodyNeedsBody:
        return "cutBody: there is no body to cut";
    case FaultRule::statusAllowsBody:
        return "status: an answer with 204 or 304 has no body";
    case FaultRule::someActionIsNeeded:
        return "a fault needs status, body, delay, drop, reset, hang or cutBody";
    }
    return "";
}

json::object toJsonObject(const Fault& fault) {
    json::object object;
    if (!fault.path.empty()) {
        object["path"] = fault.path;
    }
    if (fault.count) {
        object["count"] = *fault.count;
    }
    if (const auto* answer = std::get_if<AnswerWith>(&fault.action)) {
        object["status"] = answer->status;
        if (!answer->location.empty()) {
            object["location"] = answer->location;
        }
        if (!answer->body.empty()) {
            object["body"] = answer->body;
        }
    } else if (std::holds_alternative<DropConnection>(fault.action)) {
        object["drop"] = true;
    } else if (std::holds_alternative<ResetConnection>(fault.action)) {
        object["reset"] = true;
    } else if (std::holds_alternative<HoldConnection>(fault.action)) {
        object["hang"] = true;
    }
    if (fault.cutBody) {
        object["cutBody"] = true;
    }
    if (fault.delay.count() > 0) {
        object["delayMilliseconds"] = fault.delay.count();
    }
    return object;
}

}  // namespace

std::string describe(const FaultError& error) {
    struct {
        std::string operator()(const DocumentError& document) const { return describe(document); }

        std::string operator()(const UnknownFaultKey& unknownKey) const {
            return "unknown key \"" + printable(unknownKey.key) + "\"";
        }

        std::string operator()(FaultRule rule) const { return std::string(textOf(rule)); }
    } description;

    return std::visit(description, error);
}

Result<Fault, FaultError> readFaultJson(std::string_view text) {
    const Result<json::value, DocumentError> value = readJson(text);
    if (!value) {
        return Unexpected(value.error());
    }
    if (!value->is_object()) {
        return Unexpected(wrongKind("", "an object", *value));
    }

    Draft draft;
    for (const auto& [keyText, member] : value->get_object()) {
        const std::string_view key(keyText.data(), keyText.size());
        if (auto* numberTarget = numberNamed(draft, key)) {
            json::error_code error;
            *numberTarget = member.to_number<std::uint64_t>(error);
            if (error || member.is_double()) {
                return Unexpected(wrongKind(key, "an unsigned integer", member));
            }
        } else if (bool* flag = flagNamed(draft, key)) {
            if (!member.is_bool()) {
                return Unexpected(wrongKind(key, "a boolean", member));
            }
            *flag = member.get_bool();
        } else if (auto* target = textNamed(draft, key)) {
            if (!member.is_string()) {
                return Unexpected(wrongKind(key, "a string", member));
            }
            *target = std::string(member.get_string());
        } else {
            return unknown(key);
        }
    }

    return checked(std::move(draft));
}

Result<Fault, FaultError> readFaultOption(std::string_view text) {
    Draft draft;
    while (!text.empty()) {
        constexpr std::string_view bodyKey = "body=";
        if (text.starts_with(bodyKey)) {
            draft.body = text.substr(bodyKey.size());
            break;
        }
        const std::size_t comma = text.find(',');
        const std::string_view part = text.substr(0, comma);
        text.remove_prefix(comma == std::string_view::npos ? text.size() : comma + 1);

        const std::size_t equals = part.find('=');
        const std::string_view written = part.substr(0, equals);
        const std::string_view key = written == "delay" ? "delayMilliseconds" : written;
        if (equals == std::string_view::npos) {
            bool* const flag = flagNamed(draft, key);
            if (flag == nullptr) {
                return unknown(part);
            }
            *flag = true;
            continue;
        }
        const std::string_view value = part.substr(equals + 1);
        if (auto* target = numberNamed(draft, key)) {
            *target = tools::parseNumber<std::uint64_t>(value);
            if (!*target) {
                return Unexpected(WrongValue{std::string(written), "an unsigned integer",
                                             "\"" + std::string(value) + "\""});
            }
        } else if (auto* textTarget = textNamed(draft, key)) {
            *textTarget = std::string(value);
        } else {
            return unknown(written);
        }
    }
    return checked(std::move(draft));
}

std::string describe(const Fault& fault) {
    struct {
        std::string operator()(const HandleAsUsual&) const { return {}; }

        std::string operator()(const AnswerWith& answer) const {
            return "status " + std::to_string(answer.status);
        }

        std::string operator()(const DropConnection&) const { return "drop"; }

        std::string operator()(const ResetConnection&) const { return "reset"; }

        std::string operator()(const HoldConnection&) const { return "hang"; }
    } inWords;

    std::string text = std::visit(inWords, fault.action);
    const auto add = [&text](const std::string& part) { text += (text.empty() ? "" : ", ") + part; };
    if (fault.cutBody) {
        add("cutBody");
    }
    if (fault.delay.count() > 0) {
        add("delay " + std::to_string(fault.delay.count()) + " ms");
    }
    return text;
}

bool isControlPath(std::string_view path) {
    return path == "/control" || path.starts_with("/control/");
}

std::optional<Fault> Faults::take(std::string_view path) {
    if (isControlPath(path)) {
        return std::nullopt;
    }
    const auto found = std::find_if(faults_.begin(), faults_.end(),
                                    [path](const Fault& fault) { return path.starts_with(fault.path); });
    if (found == faults_.end()) {
        return std::nullopt;
    }
    Fault fault = *found;
    if (found->count && --*found->count == 0) {
        faults_.erase(found);
    }
    return fault;
}

std::string Faults::toJson() const {
    json::array list;
    for (const Fault& fault : faults_) {
        list.push_back(toJsonObject(fault));
    }
    json::object object;
    object["faults"] = std::move(list);
    return json::serialize(object);
}

}  // namespace vorna::devserver
