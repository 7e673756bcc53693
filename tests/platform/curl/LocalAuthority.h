// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A certificate authority for one test, with valid and invalid certificates for a server on "localhost".

#include <tests/support/Nginx.h>
#include <tests/support/TemporaryFolder.h>
#include <tools/devserver/CertificateAuthority.h>

#include <chrono>
#include <string>
#include <utility>

namespace vorna {

class LocalAuthority {
  public:
    LocalAuthority()
        : authority_(devserver::CertificateAuthority::create(
              "A test's authority", now() - std::chrono::hours(48), now() + std::chrono::hours(48))) {
        support::writeFile(folder_.path() / "ca.pem", authority_.certificate());
    }

    /// The PEM file for clients that trust this authority.
    std::string file() const { return (folder_.path() / "ca.pem").string(); }

    devserver::CertificateWithKey good() const { return authority_.issue(subject("localhost", 24)); }

    devserver::CertificateWithKey expired() const { return authority_.issue(subject("localhost", -24)); }

    devserver::CertificateWithKey forAnotherName() const {
        return authority_.issue(subject("other.invalid", 24));
    }

    static devserver::CertificateWithKey selfSigned() {
        return devserver::CertificateAuthority::selfSigned(subject("localhost", 24));
    }

    /// The configuration of an nginx with a certificate of this authority.
    support::Nginx::Options nginx(std::string server, bool offersHttp2 = true) const {
        devserver::CertificateWithKey identity = good();
        return {.certificate = std::move(identity.certificate),
                .privateKey = std::move(identity.privateKey),
                .offersHttp2 = offersHttp2,
                .server = std::move(server)};
    }

  private:
    static std::chrono::system_clock::time_point now() { return std::chrono::system_clock::now(); }

    static devserver::CertificateSubject subject(const std::string& name, int hoursLeft) {
        return {.commonName = name,
                .dnsNames = {name},
                .ipAddresses = {},
                .notBefore = now() - std::chrono::hours(36),
                .notAfter = now() + std::chrono::hours(hoursLeft)};
    }

    support::TemporaryFolder folder_;
    devserver::CertificateAuthority authority_;
};

}  // namespace vorna
