// SPDX-License-Identifier: Apache-2.0
#include <tools/devserver/Faults.h>

#include <tools/devserver/JsonText.h>

#include <boost/json/serialize.hpp>

#include <algorithm>
#include <charconv>
#include <utility>

namespace vorna::devserver {
namespace {

namespace json = boost::json;

constexpr std::uint64_t longestDelay = 24ULL * 60 * 60 * 1000;

// A fault as far as it was written down, before it is known whether it makes sense.
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

Reading<Fault> finish(Draft draft) {
    if (draft.path && !draft.path->starts_with('/')) {
        return Complaint{"path: begins with a slash"};
    }
    if (draft.path && isControlPath(*draft.path)) {
        return Complaint{"path: faults never touch /control"};
    }
    if (draft.count == 0U) {
        return Complaint{"count: at least 1 (leave it out for every request)"};
    }
    if (draft.delay.value_or(0) > longestDelay) {
        return Complaint{"delay: at most a day"};
    }
    if (draft.status && (*draft.status < 200 || *draft.status > 999)) {
        return Complaint{"status: from 200 to 999"};
    }
    if (draft.location && (draft.location->empty() || hasControlCharacter(*draft.location))) {
        return Complaint{"location: not a header value"};
    }
    if (draft.location && !draft.status) {
        return Complaint{"location: needs a status"};
    }
    const bool answers = draft.status || draft.body;
    if (static_cast<int>(draft.drop) + static_cast<int>(draft.reset) + static_cast<int>(draft.hang) +
            static_cast<int>(answers) >
        1) {
        return Complaint{"a fault has one of status or body, drop, reset and hang"};
    }
    if (draft.cutBody && (draft.drop || draft.reset || draft.hang)) {
        return Complaint{"cutBody: there is no body to cut"};
    }
    if (draft.status && allowsNoBody(*draft.status) && (draft.cutBody || draft.body)) {
        return Complaint{"status " + std::to_string(*draft.status) + " has no body"};
    }
    if (!answers && !draft.drop && !draft.reset && !draft.hang && !draft.cutBody && !draft.delay) {
        return Complaint{"a fault needs status, body, delay, drop, reset, hang or cutBody"};
    }

    Fault fault;
    fault.path = draft.path.value_or("");
    fault.count = draft.count;
    fault.delay = std::chrono::milliseconds(draft.delay.value_or(0));
    fault.cutBody = draft.cutBody;
    if (answers) {
        fault.deed = AnswerWith{static_cast<unsigned>(draft.status.value_or(200)),
                                draft.location.value_or(""), draft.body.value_or("")};
    } else if (draft.drop) {
        fault.deed = DropConnection{};
    } else if (draft.reset) {
        fault.deed = ResetConnection{};
    } else if (draft.hang) {
        fault.deed = HoldConnection{};
    }
    return fault;
}

std::optional<std::uint64_t> number(std::string_view digits) {
    std::uint64_t value = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, value);
    return error == std::errc() && stop == end ? std::optional(value) : std::nullopt;
}

// What a key may set, under its JSON name; the command line says "delay" for "delayMilliseconds".
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

Complaint unknown(std::string_view key) {
    return {"a fault has no \"" + std::string(key) + "\""};
}

json::object toJsonObject(const Fault& fault) {
    json::object object;
    if (!fault.path.empty()) {
        object["path"] = fault.path;
    }
    if (fault.count) {
        object["count"] = *fault.count;
    }
    if (const auto* answer = std::get_if<AnswerWith>(&fault.deed)) {
        object["status"] = answer->status;
        if (!answer->location.empty()) {
            object["location"] = answer->location;
        }
        if (!answer->body.empty()) {
            object["body"] = answer->body;
        }
    } else if (std::holds_alternative<DropConnection>(fault.deed)) {
        object["drop"] = true;
    } else if (std::holds_alternative<ResetConnection>(fault.deed)) {
        object["reset"] = true;
    } else if (std::holds_alternative<HoldConnection>(fault.deed)) {
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

Reading<Fault> readFaultJson(std::string_view text) {
    Reading<json::value> reading = readJson(text);
    if (auto* complaint = std::get_if<Complaint>(&reading)) {
        return std::move(*complaint);
    }
    const auto& value = std::get<json::value>(reading);
    if (!value.is_object()) {
        return Complaint{"expected an object, found " + std::string(kindInWords(value))};
    }

    Draft draft;
    for (const auto& [keyText, member] : value.get_object()) {
        const std::string_view key(keyText.data(), keyText.size());
        if (auto* numberTarget = numberNamed(draft, key)) {
            json::error_code error;
            *numberTarget = member.to_number<std::uint64_t>(error);
            if (error || member.is_double()) {
                return wrongKind(key, "an unsigned integer", member);
            }
        } else if (bool* flag = flagNamed(draft, key)) {
            if (!member.is_bool()) {
                return wrongKind(key, "a boolean", member);
            }
            *flag = member.get_bool();
        } else if (auto* target = textNamed(draft, key)) {
            if (!member.is_string()) {
                return wrongKind(key, "a string", member);
            }
            *target = std::string(member.get_string());
        } else {
            return unknown(key);
        }
    }

    return finish(std::move(draft));
}

Reading<Fault> readFaultOption(std::string_view text) {
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
            *target = number(value);
            if (!*target) {
                return Complaint{std::string(written) + ": expected an unsigned integer, found \"" +
                                 std::string(value) + "\""};
            }
        } else if (auto* textTarget = textNamed(draft, key)) {
            *textTarget = std::string(value);
        } else {
            return unknown(written);
        }
    }
    return finish(std::move(draft));
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

    std::string text = std::visit(inWords, fault.deed);
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
