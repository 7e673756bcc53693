// SPDX-License-Identifier: Apache-2.0
#include <tools/devserver/Router.h>

#include <tools/devserver/EventDocument.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>

namespace vorna::devserver {
namespace {

constexpr std::string_view mediaPath = "/media/";

// A target in its parts. The authority is empty unless the target is absolute, as in a request to a proxy.
struct Target {
    std::string_view authority;
    std::string_view path;
};

Target partsOf(std::string_view target) {
    Target parts;
    for (const std::string_view scheme : {"https://", "http://"}) {
        if (target.starts_with(scheme)) {
            target.remove_prefix(scheme.size());
            const std::size_t end = std::min(target.find('/'), target.size());
            parts.authority = target.substr(0, end);
            target = end == target.size() ? std::string_view("/") : target.substr(end);
            break;
        }
    }
    parts.path = target.substr(0, target.find_first_of("?#"));
    return parts;
}

Answer methodNotAllowed(std::string_view allowed) {
    Answer answer = errorAnswer(405, "only " + std::string(allowed));
    answer.headers.emplace_back("Allow", allowed);
    return answer;
}

Answer faultAnswer(const AnswerWith& fault) {
    Answer answer;
    answer.status = fault.status;
    if (!fault.location.empty()) {
        answer.headers.emplace_back("Location", fault.location);
    }
    if (!fault.body.empty()) {
        answer.headers.emplace_back("Content-Type", "application/json");
    }
    answer.body = fault.body;
    return answer;
}

// The outcome of a request that a fault keeps from the service.
Outcome outcomeOf(const FaultAction& action) {
    Outcome outcome;
    if (const auto* answer = std::get_if<AnswerWith>(&action)) {
        outcome.action = faultAnswer(*answer);
    } else if (std::holds_alternative<DropConnection>(action)) {
        outcome.action = DropConnection{};
    } else if (std::holds_alternative<ResetConnection>(action)) {
        outcome.action = ResetConnection{};
    } else if (std::holds_alternative<HoldConnection>(action)) {
        outcome.action = HoldConnection{};
    }
    return outcome;
}

}  // namespace

Router::Router(EventJournal& journal, const ConfigFile& config, std::optional<MediaFolder> media,
               Faults& faults, Statistics& statistics, Console console, OwnAddress ownAddress)
    : journal_(journal),
      config_(config),
      media_(std::move(media)),
      faults_(faults),
      statistics_(statistics),
      console_(std::move(console)),
      ownAddress_(std::move(ownAddress)) {}

Outcome Router::handle(const Request& request) {
    const std::string_view path = partsOf(request.target).path;
    if (isControlPath(path)) {
        return control(request, path);
    }

    statistics_.countRequest(path);
    Outcome outcome;
    const std::optional<Fault> fault = faults_.take(path);
    if (fault) {
        console_.request("fault  " + std::string(request.method) + " " + printable(path) + "  " +
                         describe(*fault));
    }
    if (fault && !std::holds_alternative<HandleAsUsual>(fault->action)) {
        outcome = outcomeOf(fault->action);
    } else {
        outcome.action = serve(request, path);
    }
    if (fault) {
        outcome.delay = fault->delay;
        outcome.cutBody = fault->cutBody;
    }
    if (const auto* answer = std::get_if<Answer>(&outcome.action)) {
        statistics_.countStatus(answer->status);
    } else {
        statistics_.countUnanswered();
    }
    return outcome;
}

Answer Router::serve(const Request& request, std::string_view path) {
    if (path == "/v1/event") {
        return request.method == "POST" ? recordEvent(request) : methodNotAllowed("POST");
    }
    if (path == "/v1/config") {
        return request.method == "POST" ? configuration(request) : methodNotAllowed("POST");
    }
    if (path.starts_with(mediaPath)) {
        const bool reads = request.method == "GET" || request.method == "HEAD";
        return reads ? media(request, path.substr(mediaPath.size())) : methodNotAllowed("GET, HEAD");
    }
    console_.request("not found  " + std::string(request.method) + " " + printable(path));
    return errorAnswer(404, "nothing is served here");
}

Answer Router::recordEvent(const Request& request) {
    const Result<EventDocument, DocumentError> event = readEventDocument(request.body);
    if (!event) {
        statistics_.countRejectedEvent();
        return rejected("/v1/event", event.error());
    }
    if (const auto appended = journal_.append(event->line); !appended) {
        return troubled(describe(appended.error()));
    }
    statistics_.countRecordedEvent();
    console_.request("event  " + printable(event->name) + "  " + printable(event->customValue) + "  " +
                     std::to_string(event->createDate) + ".." + std::to_string(event->endDate));
    return jsonAnswer(200, "{}");
}

Answer Router::configuration(const Request& request) {
    if (const auto checked = checkConfigRequest(request.body); !checked) {
        return rejected("/v1/config", checked.error());
    }
    const Result<std::string, ConfigFileError> configs = config_.read();
    if (!configs) {
        return troubled(describe(configs.error()));
    }
    console_.request("config  " + std::to_string(configs->size()) + " bytes");
    return jsonAnswer(200, "{\"configs\":" + *configs + "}");
}

Answer Router::rejected(std::string_view path, const DocumentError& error) const {
    const std::string explanation = describe(error);
    constexpr std::size_t longestShown = 500;
    console_.request("rejected  " + std::string(path) + "  " + printable(explanation, longestShown));
    return errorAnswer(400, explanation);
}

Answer Router::troubled(const std::string& problem) const {
    console_.trouble(problem);
    return errorAnswer(500, problem);
}

Answer Router::media(const Request& request, std::string_view name) const {
    std::optional<MediaFile> file = media_ ? media_->open(name) : std::nullopt;
    if (!file) {
        console_.request("not found  " + std::string(request.method) + " " + printable(mediaPath) +
                         printable(name));
        return errorAnswer(404, media_ ? "no such file in the media folder" : "started without --media");
    }

    const bool ranged = request.method == "GET" &&
                        !request.conditionalRange;  // we send no validator, so no condition can hold
    const auto range = ranged ? readByteRange(request.range, file->size) : WholeFile{};
    if (std::holds_alternative<UnsatisfiableRange>(range)) {
        Answer answer = errorAnswer(416, "no such range");
        answer.headers.emplace_back("Content-Range", "bytes */" + std::to_string(file->size));
        return answer;
    }

    Answer answer;
    answer.headers.emplace_back("Content-Type", file->type);
    answer.headers.emplace_back("Accept-Ranges", "bytes");
    ByteRange slice{0, file->size};
    if (const auto* part = std::get_if<ByteRange>(&range)) {
        slice = *part;
        answer.status = 206;
        answer.headers.emplace_back("Content-Range", "bytes " + std::to_string(slice.offset) + "-" +
                                                         std::to_string(slice.offset + slice.length - 1) +
                                                         "/" + std::to_string(file->size));
    }
    answer.body = FileSlice{std::make_shared<const FileDescriptor>(std::move(file->file)), slice};
    console_.request("media  " + printable(name) + "  " + std::to_string(slice.length) + " bytes");
    return answer;
}

// Why the request may not control the server. A browser sends requests from the same machine too, for any
// page.
std::optional<std::string> Router::whyNotControlled(const Request& request) const {
    if (!request.fromLoopback) {
        return "/control accepts requests from the same machine only";
    }
    const std::string_view authority = partsOf(request.target).authority;
    if (!ownAddress_.isHost(request.host) || !(authority.empty() || ownAddress_.isHost(authority))) {
        return "/control accepts requests to the server's own address only";
    }
    if (request.origin && !OwnAddress::isSameOrigin(*request.origin, request.host)) {
        return "/control accepts no requests from other origins";
    }
    return std::nullopt;
}

Outcome Router::control(const Request& request, std::string_view path) {
    Outcome outcome;
    if (const std::optional<std::string> reason = whyNotControlled(request)) {
        outcome.action = errorAnswer(403, *reason);
    } else if (path == "/control/faults") {
        if (request.method == "POST") {
            Result<Fault, FaultError> fault = readFaultJson(request.body);
            if (!fault) {
                outcome.action = errorAnswer(400, describe(fault.error()));
                return outcome;
            }
            faults_.add(*std::move(fault));
        } else if (request.method == "DELETE") {
            faults_.clear();
        } else if (request.method != "GET") {
            outcome.action = methodNotAllowed("GET, POST, DELETE");
            return outcome;
        }
        outcome.action = jsonAnswer(200, faults_.toJson());
    } else if (path == "/control/statistics") {
        outcome.action =
            request.method == "GET" ? jsonAnswer(200, statistics_.toJson()) : methodNotAllowed("GET");
    } else if (path == "/control/shutdown") {
        outcome.action = request.method == "POST" ? jsonAnswer(200, "{}") : methodNotAllowed("POST");
        outcome.stopServer = request.method == "POST";
    } else {
        outcome.action = errorAnswer(404, "/control has faults, statistics and shutdown");
    }
    return outcome;
}

}  // namespace vorna::devserver
