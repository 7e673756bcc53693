// SPDX-License-Identifier: Apache-2.0
#include <tools/devserver/ServerIdentity.h>

#include <tools/common/Files.h>
#include <tools/devserver/CertificateAuthority.h>

#include <arpa/inet.h>

#include <array>
#include <optional>
#include <stdexcept>

namespace vorna::devserver {
namespace {

using std::chrono::hours;

constexpr hours authorityLifetime{24 * 3650};
// Some clients refuse longer lifetimes, even from a private authority.
constexpr hours serverLifetime{24 * 397};
constexpr hours clockTolerance{24};  // a phone's clock may be behind ours
constexpr hours renewalMargin{24};

std::string contentsOf(const std::filesystem::path& path) {
    return tools::readFile(path).value_or("");
}

bool isAddress(const std::string& name) {
    std::array<unsigned char, 16> bytes{};
    return ::inet_pton(AF_INET, name.c_str(), bytes.data()) == 1 ||
           ::inet_pton(AF_INET6, name.c_str(), bytes.data()) == 1;
}

std::optional<CertificateAuthority> existingAuthority(const std::filesystem::path& certificate,
                                                      const std::filesystem::path& key,
                                                      std::chrono::system_clock::time_point now) {
    try {
        auto authority = CertificateAuthority::fromPem({contentsOf(certificate), contentsOf(key)});
        if (authority.isValidAt(now + renewalMargin)) {
            return authority;
        }
    } catch (const std::runtime_error&) {
        // Missing or damaged: the caller creates another.
    }
    return std::nullopt;
}

bool isStillValid(const CertificateAuthority& authority, const ServerIdentity& files,
                  const CertificateSubject& subject, std::chrono::system_clock::time_point now) {
    try {
        const CertificateWithKey identity{contentsOf(files.certificate), contentsOf(files.key)};
        return authority.vouchesFor(identity, subject.dnsNames, subject.ipAddresses, now + renewalMargin);
    } catch (const std::runtime_error&) {
        return false;
    }
}

}  // namespace

ServerIdentity serverIdentity(const std::filesystem::path& folder,
                              const std::vector<std::string>& additionalNames,
                              std::chrono::system_clock::time_point now) {
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error) {
        throw std::runtime_error("cannot create the folder " + folder.string() + ": " + error.message());
    }

    ServerIdentity files{folder / "ca.pem", folder / "server.pem", folder / "server.key"};
    const std::filesystem::path authorityKey = folder / "ca.key";

    std::optional<CertificateAuthority> authority = existingAuthority(files.authority, authorityKey, now);
    if (!authority) {
        authority = CertificateAuthority::create("vorna-devserver development authority",
                                                 now - clockTolerance, now + authorityLifetime);
        writePrivateKeyFile(authorityKey, authority->privateKey());
        writeCertificateFile(files.authority, authority->certificate());
    }

    CertificateSubject subject{
        "localhost", {"localhost"}, {"127.0.0.1", "::1"}, now - clockTolerance, now + serverLifetime};
    for (const std::string& name : additionalNames) {
        (isAddress(name) ? subject.ipAddresses : subject.dnsNames).push_back(name);
    }
    if (!isStillValid(*authority, files, subject, now)) {
        const CertificateWithKey identity = authority->issue(subject);
        writePrivateKeyFile(files.key, identity.privateKey);
        writeCertificateFile(files.certificate, identity.certificate);
    }
    return files;
}

}  // namespace vorna::devserver
