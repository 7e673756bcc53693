// SPDX-License-Identifier: Apache-2.0
#include <tools/devserver/Router.h>

#include <tools/devserver/EventDocument.h>

#include <string>
#include <utility>

namespace vorna::devserver {
namespace {

constexpr std::string_view mediaPath = "/media/";

// The path alone, without scheme and host (a proxy's form of request) and without query.
std::string_view pathOf(std::string_view target) {
    for (const std::string_view scheme : {"https://", "http://"}) {
        if (target.starts_with(scheme)) {
            const std::size_t slash = target.find('/', scheme.size());
            target = slash == std::string_view::npos ? std::string_view("/") : target.substr(slash);
        }
    }
    return target.substr(0, target.find_first_of("?#"));
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

// What a fault makes of a request that the service never sees.
Outcome outcomeOf(const FaultDeed& deed) {
    Outcome outcome;
    if (const auto* answer = std::get_if<AnswerWith>(&deed)) {
        outcome.deed = faultAnswer(*answer);
    } else if (std::holds_alternative<DropConnection>(deed)) {
        outcome.deed = DropConnection{};
    } else if (std::holds_alternative<ResetConnection>(deed)) {
        outcome.deed = ResetConnection{};
    } else if (std::holds_alternative<HoldConnection>(deed)) {
        outcome.deed = HoldConnection{};
    }
    return outcome;
}

}  // namespace

Router::Router(EventJournal& journal, const ConfigFile& config, std::optional<MediaFolder> media,
               Faults& faults, Statistics& statistics, Console console)
    : journal_(journal),
      config_(config),
      media_(std::move(media)),
      faults_(faults),
      statistics_(statistics),
      console_(std::move(console)) {}

Outcome Router::handle(const Request& request) {
    const std::string_view path = pathOf(request.target);
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
    if (fault && !std::holds_alternative<HandleAsUsual>(fault->deed)) {
        outcome = outcomeOf(fault->deed);
    } else {
        outcome.deed = serve(request, path);
    }
    if (fault) {
        outcome.delay = fault->delay;
        outcome.cutBody = fault->cutBody;
    }
    if (const auto* answer = std::get_if<Answer>(&outcome.deed)) {
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
    Reading<EventDocument> reading = readEventDocument(request.body);
    if (const auto* complaint = std::get_if<Complaint>(&reading)) {
        statistics_.countRejectedEvent();
        console_.request("rejected  /v1/event  " + printable(complaint->text, 500));
        return errorAnswer(400, complaint->text);
    }
    const auto& event = std::get<EventDocument>(reading);
    if (const std::string problem = journal_.append(event.line); !problem.empty()) {
        console_.trouble(problem);
        return errorAnswer(500, problem);
    }
    statistics_.countRecordedEvent();
    console_.request("event  " + printable(event.name) + "  " + printable(event.customValue) + "  " +
                     std::to_string(event.createDate) + ".." + std::to_string(event.endDate));
    return jsonAnswer(200, "{}");
}

Answer Router::configuration(const Request& request) {
    if (const std::string complaint = complaintAboutConfigRequest(request.body); !complaint.empty()) {
        console_.request("rejected  /v1/config  " + printable(complaint, 500));
        return errorAnswer(400, complaint);
    }
    Reading<std::string> reading = config_.read();
    if (const auto* complaint = std::get_if<Complaint>(&reading)) {
        console_.trouble(complaint->text);
        return errorAnswer(500, complaint->text);
    }
    const auto& configs = std::get<std::string>(reading);
    console_.request("config  " + std::to_string(configs.size()) + " bytes");
    return jsonAnswer(200, "{\"configs\":" + configs + "}");
}

Answer Router::media(const Request& request, std::string_view name) const {
    std::optional<MediaFile> file = media_ ? media_->open(name) : std::nullopt;
    if (!file) {
        console_.request("not found  " + std::string(request.method) + " " + printable(mediaPath) +
                         printable(name));
        return errorAnswer(404, media_ ? "no such file in the media folder" : "started without --media");
    }

    const bool ranged = request.method == "GET" &&
                        !request.conditionalRange;  // we name no validator, so that no condition can hold
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

Outcome Router::control(const Request& request, std::string_view path) {
    Outcome outcome;
    if (!request.fromLoopback) {
        outcome.deed = errorAnswer(403, "the server is steered from its own machine only");
    } else if (path == "/control/faults") {
        if (request.method == "POST") {
            Reading<Fault> reading = readFaultJson(request.body);
            if (const auto* complaint = std::get_if<Complaint>(&reading)) {
                outcome.deed = errorAnswer(400, complaint->text);
                return outcome;
            }
            faults_.add(std::move(std::get<Fault>(reading)));
        } else if (request.method == "DELETE") {
            faults_.clear();
        } else if (request.method != "GET") {
            outcome.deed = methodNotAllowed("GET, POST, DELETE");
            return outcome;
        }
        outcome.deed = jsonAnswer(200, faults_.toJson());
    } else if (path == "/control/statistics") {
        outcome.deed =
            request.method == "GET" ? jsonAnswer(200, statistics_.toJson()) : methodNotAllowed("GET");
    } else if (path == "/control/shutdown") {
        outcome.deed = request.method == "POST" ? jsonAnswer(200, "{}") : methodNotAllowed("POST");
        outcome.stopServer = request.method == "POST";
    } else {
        outcome.deed = errorAnswer(404, "the control path has faults, statistics and shutdown");
    }
    return outcome;
}

}  // namespace vorna::devserver
