// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace vorna::devserver {

/// What a certificate is to say: whom it names and how long it holds. Nothing is filled in behind the
/// caller's back, so a test can ask for a certificate that has expired, is not yet valid, or names another
/// host.
struct CertificateSubject {
    std::string commonName;
    std::vector<std::string> dnsNames;
    std::vector<std::string> ipAddresses;  ///< in text, IPv4 or IPv6
    std::chrono::system_clock::time_point notBefore;
    std::chrono::system_clock::time_point notAfter;
};

/// A certificate and the private key that belongs to it, both PEM.
struct CertificateWithKey {
    std::string certificate;
    std::string privateKey;
};

/// A certificate authority for development and tests: it makes its own root and issues server certificates
/// (ECDSA, P-256). Clients that trust `certificate()` accept what it issues.
///
/// A plain value without shared state: copy it freely, use one copy from one thread at a time. Every function
/// throws std::runtime_error when OpenSSL refuses, naming the step.
class CertificateAuthority {
  public:
    /// A new root with a new key.
    [[nodiscard]] static CertificateAuthority create(std::string_view name,
                                                     std::chrono::system_clock::time_point notBefore,
                                                     std::chrono::system_clock::time_point notAfter);

    /// An authority made earlier. Throws as well when the two do not belong together or the certificate is
    /// not an authority's.
    [[nodiscard]] static CertificateAuthority fromPem(CertificateWithKey identity);

    /// A server certificate with a new key, signed by this authority.
    [[nodiscard]] CertificateWithKey issue(const CertificateSubject& subject) const;

    /// A server certificate that nobody vouches for but itself.
    [[nodiscard]] static CertificateWithKey selfSigned(const CertificateSubject& subject);

    /// Whether a client that trusts this authority would accept `identity` at `time` for every one of the
    /// names and addresses, and its key fits.
    [[nodiscard]] bool vouchesFor(const CertificateWithKey& identity,
                                  const std::vector<std::string>& dnsNames,
                                  const std::vector<std::string>& ipAddresses,
                                  std::chrono::system_clock::time_point time) const;

    /// Whether the root itself holds at `time`.
    [[nodiscard]] bool isValidAt(std::chrono::system_clock::time_point time) const;

    [[nodiscard]] const std::string& certificate() const { return identity_.certificate; }

    [[nodiscard]] const std::string& privateKey() const { return identity_.privateKey; }

  private:
    explicit CertificateAuthority(CertificateWithKey identity) : identity_(std::move(identity)) {}

    CertificateWithKey identity_;
};

/// Writes a certificate for all to read, and a private key for the owner alone (mode 0600, from the first
/// moment on). An existing file is replaced as a whole. Throws std::runtime_error naming the file.
void writeCertificateFile(const std::filesystem::path& path, std::string_view pem);
void writePrivateKeyFile(const std::filesystem::path& path, std::string_view pem);

}  // namespace vorna::devserver
