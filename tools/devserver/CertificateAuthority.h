// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Certificates for development and tests.

#include <chrono>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace vorna::devserver {

/// The names and validity of a certificate. Nothing is filled in, so a test can request a certificate that
/// has expired, is not yet valid, or names another host.
struct CertificateSubject {
    std::string commonName;
    std::vector<std::string> dnsNames;
    std::vector<std::string> ipAddresses;  ///< textual, IPv4 or IPv6
    std::chrono::system_clock::time_point notBefore;
    std::chrono::system_clock::time_point notAfter;
};

/// A certificate and its private key, both PEM.
struct CertificateWithKey {
    std::string certificate;
    std::string privateKey;
};

/// A certificate authority with its own root that issues server certificates (ECDSA, P-256). Clients that
/// trust `certificate()` accept them.
///
/// A value: copies share no state. Every function throws std::runtime_error, naming the step, if OpenSSL
/// fails.
class CertificateAuthority {
  public:
    /// Creates a root with a new key.
    [[nodiscard]] static CertificateAuthority create(std::string_view name,
                                                     std::chrono::system_clock::time_point notBefore,
                                                     std::chrono::system_clock::time_point notAfter);

    /// Restores an authority. Throws also if certificate and key do not match or the certificate is not an
    /// authority's.
    [[nodiscard]] static CertificateAuthority fromPem(CertificateWithKey identity);

    /// Issues a server certificate with a new key.
    [[nodiscard]] CertificateWithKey issue(const CertificateSubject& subject) const;

    /// Creates a self-signed server certificate.
    [[nodiscard]] static CertificateWithKey selfSigned(const CertificateSubject& subject);

    /// Whether a client that trusts this authority would accept `identity` at `time` for all of the names and
    /// addresses, and its key matches.
    [[nodiscard]] bool vouchesFor(const CertificateWithKey& identity,
                                  const std::vector<std::string>& dnsNames,
                                  const std::vector<std::string>& ipAddresses,
                                  std::chrono::system_clock::time_point time) const;

    /// Whether the root is valid at `time`.
    [[nodiscard]] bool isValidAt(std::chrono::system_clock::time_point time) const;

    [[nodiscard]] const std::string& certificate() const { return identity_.certificate; }

    [[nodiscard]] const std::string& privateKey() const { return identity_.privateKey; }

  private:
    explicit CertificateAuthority(CertificateWithKey identity) : identity_(std::move(identity)) {}

    CertificateWithKey identity_;
};

/// Write a certificate that everybody can read, and a private key that only the owner can (mode 0600 from the
/// start). An existing file is replaced atomically. The folder must exist. Throw std::runtime_error naming
/// the file.
void writeCertificateFile(const std::filesystem::path& path, std::string_view pem);
void writePrivateKeyFile(const std::filesystem::path& path, std::string_view pem);

}  // namespace vorna::devserver
