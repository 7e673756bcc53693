// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/curl/TrustStore.h>

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace vorna {
namespace {

struct Layout {
    const char* system;
    const char* bundle;
};

class SystemTrustStore : public testing::TestWithParam<Layout> {
  protected:
    const std::filesystem::path root_ =
        std::filesystem::temp_directory_path() / ("vorna-trust-" + std::to_string(getpid()));

    void TearDown() override { std::filesystem::remove_all(root_); }
};

TEST_P(SystemTrustStore, IsFoundInTheSystemsUsualPlace) {
    const std::filesystem::path bundle = root_.string() + GetParam().bundle;
    std::filesystem::create_directories(bundle.parent_path());
    std::ofstream(bundle) << "certificates\n";
    EXPECT_EQ(systemTrustStore(root_.string()).bundleFile, bundle.string());
}

INSTANTIATE_TEST_SUITE_P(
    Layouts, SystemTrustStore,
    testing::Values(Layout{"Debian", "/etc/ssl/certs/ca-certificates.crt"},
                    Layout{"Fedora", "/etc/pki/ca-trust/extracted/pem/tls-ca-bundle.pem"},
                    Layout{"OlderFedora", "/etc/pki/tls/certs/ca-bundle.crt"},
                    Layout{"openSUSE", "/var/lib/ca-certificates/ca-bundle.pem"},
                    Layout{"OlderOpenSUSE", "/etc/ssl/ca-bundle.pem"}, Layout{"Alpine", "/etc/ssl/cert.pem"}),
    [](const auto& testCase) { return testCase.param.system; });

TEST(SystemTrustStoreOfABareSystem, IsLeftToLibcurl) {
    const TrustStore store = systemTrustStore("/nonexistent");
    EXPECT_EQ(store.bundleFile, "");
    EXPECT_EQ(store.hashedFolder, "");
}

}  // namespace
}  // namespace vorna
