// SPDX-License-Identifier: Apache-2.0
#include <tools/devserver/Answer.h>

#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>

namespace vorna::devserver {

Answer jsonAnswer(unsigned status, std::string body) {
    Answer answer;
    answer.status = status;
    answer.headers.emplace_back("Content-Type", "application/json");
    answer.body = std::move(body);
    return answer;
}

Answer errorAnswer(unsigned status, std::string_view explanation) {
    boost::json::object object;
    object["error"] = explanation;
    return jsonAnswer(status, boost::json::serialize(object));
}

}  // namespace vorna::devserver
