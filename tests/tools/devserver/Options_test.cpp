// SPDX-License-Identifier: Apache-2.0
#include <tools/devserver/Options.h>

#include <gmock/gmock.h>

#include <vector>

namespace vorna::devserver {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

Result<Options, tools::EarlyExit> read(std::vector<const char*> arguments) {
    arguments.insert(arguments.begin(), "vorna-devserver");
    return readOptions(static_cast<int>(arguments.size()), arguments.data());
}

Options options(std::vector<const char*> arguments) {
    auto options = read(std::move(arguments));
    if (!options) {
        ADD_FAILURE() << options.error().output;
        return {};
    }
    return *std::move(options);
}

tools::EarlyExit exitOf(std::vector<const char*> arguments) {
    const auto options = read(std::move(arguments));
    return options ? tools::EarlyExit{-1, "accepted"} : options.error();
}

TEST(Options, HaveDefaults) {
    const Options defaults = options({});
    EXPECT_EQ(defaults.state, "vorna-devserver-state");
    EXPECT_EQ(defaults.address, "127.0.0.1");
    EXPECT_EQ(defaults.port, 8443);
    EXPECT_FALSE(defaults.plainHttp);
    EXPECT_FALSE(defaults.quiet);
    EXPECT_EQ(defaults.events, "vorna-devserver-state/events.ndjson");
    EXPECT_EQ(defaults.config, "vorna-devserver-state/config.json");
    EXPECT_FALSE(defaults.media);
}

TEST(Options, FilesFollowTheStateFolderUnlessGiven) {
    const Options moved = options({"--state", "/tmp/x", "--events", "/tmp/e"});
    EXPECT_EQ(moved.events, "/tmp/e");
    EXPECT_EQ(moved.config, "/tmp/x/config.json");
}

TEST(Options, RepeatableOnesKeepTheirOrder) {
    const Options repeated =
        options({"--fault", "drop,count=1", "--fault", R"(status=200,body={"a":1,"b":2})", "--name",
                 "a.example", "--name", "192.0.2.1"});
    EXPECT_THAT(repeated.names, ElementsAre("a.example", "192.0.2.1"));
    ASSERT_EQ(repeated.faults.size(), 2U);
    EXPECT_TRUE(std::holds_alternative<DropConnection>(repeated.faults[0].action));
    EXPECT_EQ(std::get<AnswerWith>(repeated.faults[1].action).body, R"({"a":1,"b":2})");
}

TEST(Options, HelpNamesThemAllAndSucceeds) {
    const tools::EarlyExit help = exitOf({"--help"});
    EXPECT_EQ(help.status, 0);
    for (const char* name :
         {"--state", "--address", "--port", "--http", "--name", "--certificate", "--key", "--events",
          "--config", "--media", "--fault", "--quiet", "--version", "cutBody", "/control/faults"}) {
        EXPECT_THAT(help.output, HasSubstr(name));
    }
}

TEST(Options, MistakesAreNamedAndExitWithStatusTwo) {
    struct Row {
        std::vector<const char*> arguments;
        const char* message;
    };

    const std::vector<Row> cases = {
        {{"--no-such-option"}, "--no-such-option"},
        {{"--port", "65536"}, "--port"},
        {{"--port", "-1"}, "--port"},
        {{"--port", "many"}, "--port"},
        {{"--certificate", "a.pem"}, "--key"},
        {{"--key", "a.key"}, "--certificate"},
        {{"--http", "--certificate", "a.pem", "--key", "a.key"}, "--http"},
        {{"--fault", "status=20"}, "--fault status=20: status: from 200 to 999"},
        {{"stray"}, "stray"},
    };

    for (const auto& [arguments, message] : cases) {
        const tools::EarlyExit exit = exitOf(arguments);
        EXPECT_EQ(exit.status, 2) << message;
        EXPECT_THAT(exit.output, HasSubstr(message));
    }
}

}  // namespace
}  // namespace vorna::devserver
