// SPDX-License-Identifier: Apache-2.0
#include <vorna/config/RemoteConfigHelper.h>

#include <tests/support/RealFetch.h>
#include <tests/support/TemporaryFolder.h>
#include <tests/tools/devserver/DevServerProcess.h>

#include <vorna/platform/URL.h>

#include <gtest/gtest.h>

#include <future>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vorna {
namespace {

using support::Lines;

/// The server is the local service, over TLS.
class RemoteConfigFromTheService : public support::RealFetch {
  protected:
    void start(std::vector<std::string> arguments = {}) {
        arguments.insert(arguments.end(), {"--state", folder_.path().string(), "--quiet"});
        server_.emplace(arguments);
        ASSERT_NE(server_->url(), "");
    }

    void fetchFromTheService() { fetch(server_->url() + "/v1/config", authority()); }

    std::string configURL() const { return server_->url() + "/v1/config"; }

    /// The server's own statistics.
    std::string statistics() const {
        std::promise<std::string> answer;
        CurlHttpClient client(authority());
        client.start({.url = *URL::parse(server_->url() + "/control/statistics"), .headers = {}, .body = {}},
                     [&answer](std::optional<std::string> body, const std::optional<HttpResponse>&,
                               const std::optional<HttpError>& error) {
                         answer.set_value(error ? error->description : std::move(body).value_or("nothing"));
                     });
        return answer.get_future().get();
    }

    support::TemporaryFolder folder_;

  private:
    std::string authority() const { return folder_.path() / "ca.pem"; }

    std::optional<devserver::DevServerProcess> server_;
};

TEST_F(RemoteConfigFromTheService, ArrivesWithTheFirstRequest) {
    folder_.write("config.json", R"({"theme":"dark","empty":""})");
    start();
    fetchFromTheService();
    EXPECT_EQ(tables_, (std::vector<Configs>{{{"theme", "dark"}, {"empty", ""}}}));
    EXPECT_NE(statistics().find(R"("paths":{"/v1/config":1})"), std::string::npos) << statistics();
}

TEST_F(RemoteConfigFromTheService, IsRequestedAtMostFourTimes) {
    start({"--fault", "path=/v1/config,status=503,body=busy"});
    fetchFromTheService();
    EXPECT_TRUE(tables_.empty());
    EXPECT_NE(statistics().find(R"("paths":{"/v1/config":4})"), std::string::npos) << statistics();
    ASSERT_EQ(lines().size(), 8U);
    const std::string error =
        "[VornaSDK] HTTP Error: Optional(<HTTPResponse: " + configURL() + "> { status code: 503, headers { ";
    for (std::size_t attempt = 0; attempt < 4; ++attempt) {
        EXPECT_EQ(lines()[2 * attempt].substr(0, error.size()), error);
    }
    EXPECT_EQ(lines()[5], "[VornaSDK] Retrying fetch... Attempt 3");
    EXPECT_EQ(lines()[7], "[VornaSDK] Max retry attempts reached. Failed to fetch remote configs.");
}

TEST_F(RemoteConfigFromTheService, ArrivesWithTheFourthRequestAfterThreeKindsOfFailure) {
    folder_.write("config.json", R"({"theme":"dark"})");
    start({"--fault", "path=/v1/config,count=1,reset", "--fault", "path=/v1/config,count=1,cutBody",
           "--fault", "path=/v1/config,count=1,status=204"});
    fetchFromTheService();
    EXPECT_EQ(tables_, (std::vector<Configs>{{{"theme", "dark"}}}));
    EXPECT_NE(statistics().find(R"("paths":{"/v1/config":4})"), std::string::npos) << statistics();
}

TEST_F(RemoteConfigFromTheService, IsRejectedIfOneValueIsNotAString) {
    folder_.write("config.json", R"({"theme":"dark","limit":7})");
    start();
    fetchFromTheService();
    EXPECT_TRUE(tables_.empty());
    EXPECT_NE(statistics().find(R"("paths":{"/v1/config":4})"), std::string::npos) << statistics();
    ASSERT_GT(lines().size(), 2U);
    EXPECT_EQ(lines()[0], "[VornaSDK] Config received successfully!");
    EXPECT_EQ(lines()[1], "[VornaSDK] Decoding error: configs.limit: expected a string, found a number");
    EXPECT_EQ(lines()[2], "[VornaSDK] Retrying fetch... Attempt 1");
}

TEST_F(RemoteConfigFromTheService, IsNotAcceptedFromAnUntrustedServer) {
    folder_.write("config.json", R"({"theme":"dark"})");
    start();
    fetch(configURL());
    EXPECT_TRUE(tables_.empty());
    EXPECT_NE(statistics().find(R"("paths":{})"), std::string::npos) << statistics();
}

}  // namespace
}  // namespace vorna
