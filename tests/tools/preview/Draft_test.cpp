// SPDX-License-Identifier: Apache-2.0
#include <tools/preview/Draft.h>

#include <gtest/gtest.h>

namespace vorna::preview {
namespace {

TEST(Draft, ThatLacksAFieldHasErrors) {
    EXPECT_TRUE(check("{}", std::nullopt).hasErrors());
    EXPECT_TRUE(check("no JSON", std::nullopt).hasErrors());
}

TEST(Draft, WithOnlyWarningsHasNoErrors) {
    const Draft draft = check("[]", std::nullopt);
    EXPECT_FALSE(draft.verdict.findings.empty());
    EXPECT_FALSE(draft.hasErrors());
}

TEST(Draft, CountsTheStepsOfAnOnboarding) {
    EXPECT_EQ(check("[{},{}]", std::nullopt).steps, 2U);
    EXPECT_EQ(check("{}", std::nullopt).steps, 0U);
    EXPECT_EQ(check("[{", std::nullopt).steps, 0U);
}

TEST(MediaService, ReplacesTheExamplesServiceEverywhere) {
    const std::string text = R"(["https://127.0.0.1:8443/a","https://127.0.0.1:8443/b","https://x.test/c"])";
    EXPECT_EQ(withMediaService(text, "https://media.test/"),
              R"(["https://media.test/a","https://media.test/b","https://x.test/c"])");
    EXPECT_EQ(withMediaService(text, ""), text);
    EXPECT_EQ(withMediaService(text, exampleService), text) << "also when it is the same one";
}

}  // namespace
}  // namespace vorna::preview
