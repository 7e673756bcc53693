// SPDX-License-Identifier: Apache-2.0
#include <tools/devserver/CertificateAuthority.h>

#include <vorna/platform/AtomicFile.h>

#include <openssl/bio.h>
#include <openssl/bn.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>
#include <sys/types.h>

#include <ctime>
#include <limits>
#include <memory>
#include <stdexcept>
#include <utility>

namespace vorna::devserver {
namespace {

template <auto freeFunction>
struct Freeing {
    template <class Object>
    void operator()(Object* object) const {
        freeFunction(object);
    }
};

using Certificate = std::unique_ptr<X509, Freeing<X509_free>>;
using Key = std::unique_ptr<EVP_PKEY, Freeing<EVP_PKEY_free>>;
using Memory = std::unique_ptr<BIO, Freeing<BIO_free_all>>;
using BigNumber = std::unique_ptr<BIGNUM, Freeing<BN_free>>;
using Extension = std::unique_ptr<X509_EXTENSION, Freeing<X509_EXTENSION_free>>;
using GeneralName = std::unique_ptr<GENERAL_NAME, Freeing<GENERAL_NAME_free>>;
using GeneralNames = std::unique_ptr<GENERAL_NAMES, Freeing<GENERAL_NAMES_free>>;
using Store = std::unique_ptr<X509_STORE, Freeing<X509_STORE_free>>;
using StoreContext = std::unique_ptr<X509_STORE_CTX, Freeing<X509_STORE_CTX_free>>;
using Text = std::unique_ptr<ASN1_STRING, Freeing<ASN1_STRING_free>>;

[[noreturn]] void fail(const std::string& step) {
    const unsigned long code = ERR_get_error();
    ERR_clear_error();
    std::string text = "certificate: cannot " + step;
    if (code != 0) {
        const char* reason = ERR_reason_error_string(code);
        text += std::string(": ") + (reason != nullptr ? reason : "unknown reason");
    }
    throw std::runtime_error(text);
}

void require(bool done, const std::string& step) {
    if (!done) {
        fail(step);
    }
}

Memory readable(const std::string& text) {
    require(text.size() <= static_cast<std::size_t>(std::numeric_limits<int>::max()),
            "read text of that length");
    Memory memory(BIO_new_mem_buf(text.data(), static_cast<int>(text.size())));
    require(memory != nullptr, "allocate memory");
    return memory;
}

std::string textOf(BIO* memory) {
    char* data = nullptr;
    const long size = BIO_get_mem_data(memory, &data);
    return {data, static_cast<std::size_t>(size)};
}

// Refuses an encrypted key rather than asking for its passphrase on the terminal.
int noPassphrase(char* /*buffer*/, int /*size*/, int /*writing*/, void* /*data*/) {
    return -1;
}

Certificate parseCertificate(const std::string& pem) {
    Certificate certificate(PEM_read_bio_X509(readable(pem).get(), nullptr, noPassphrase, nullptr));
    require(certificate != nullptr, "read the certificate");
    return certificate;
}

Key parseKey(const std::string& pem) {
    Key key(PEM_read_bio_PrivateKey(readable(pem).get(), nullptr, noPassphrase, nullptr));
    require(key != nullptr, "read the private key");
    return key;
}

CertificateWithKey toPem(X509* certificate, EVP_PKEY* key) {
    const Memory certificateText(BIO_new(BIO_s_mem()));
    const Memory keyText(BIO_new(BIO_s_mem()));
    require(certificateText != nullptr && keyText != nullptr, "allocate memory");
    require(PEM_write_bio_X509(certificateText.get(), certificate) == 1, "write the certificate");
    require(PEM_write_bio_PKCS8PrivateKey(keyText.get(), key, nullptr, nullptr, 0, nullptr, nullptr) == 1,
            "write the private key");
    return {textOf(certificateText.get()), textOf(keyText.get())};
}

Key newKey() {
    Key key(EVP_EC_gen("P-256"));
    require(key != nullptr, "generate a key");
    return key;
}

void setRandomSerialNumber(X509* certificate) {
    constexpr int bits = 127;  // unique without bookkeeping, and positive
    const BigNumber number(BN_new());
    require(number != nullptr && BN_rand(number.get(), bits, BN_RAND_TOP_ANY, BN_RAND_BOTTOM_ANY) == 1,
            "generate a serial number");
    require(BN_to_ASN1_INTEGER(number.get(), X509_get_serialNumber(certificate)) != nullptr,
            "set the serial number");
}

void setValidity(X509* certificate, std::chrono::system_clock::time_point notBefore,
                 std::chrono::system_clock::time_point notAfter) {
    require(ASN1_TIME_set(X509_getm_notBefore(certificate),
                          std::chrono::system_clock::to_time_t(notBefore)) != nullptr,
            "set the first date");
    require(ASN1_TIME_set(X509_getm_notAfter(certificate), std::chrono::system_clock::to_time_t(notAfter)) !=
                nullptr,
            "set the last date");
}

void setCommonName(X509* certificate, std::string_view name) {
    const std::string text(name);
    require(X509_NAME_add_entry_by_NID(X509_get_subject_name(certificate), NID_commonName, MBSTRING_UTF8,
                                       reinterpret_cast<const unsigned char*>(text.data()),
                                       static_cast<int>(text.size()), -1, 0) == 1,
            "set the name \"" + text + "\"");
}

// `value` must be one of our constants: the notation would let a caller's text add more than one entry.
void addExtension(X509* certificate, X509* issuer, int kind, const char* value) {
    X509V3_CTX context{};
    X509V3_set_ctx_nodb(&context);
    X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
    const Extension extension(X509V3_EXT_nconf_nid(nullptr, &context, kind, value));
    require(extension != nullptr && X509_add_ext(certificate, extension.get(), -1) == 1,
            std::string("add the extension ") + value);
}

void push(GENERAL_NAMES* names, int type, Text value, const std::string& text) {
    GeneralName name(GENERAL_NAME_new());
    require(name != nullptr && value != nullptr, "name \"" + text + "\"");
    GENERAL_NAME_set0_value(name.get(), type, value.release());
    require(sk_GENERAL_NAME_push(names, name.get()) > 0, "name \"" + text + "\"");
    static_cast<void>(name.release());
}

void addAlternativeNames(X509* certificate, const CertificateSubject& subject) {
    if (subject.dnsNames.empty() && subject.ipAddresses.empty()) {
        return;
    }
    const GeneralNames names(GENERAL_NAMES_new());
    require(names != nullptr, "allocate memory");
    for (const std::string& dnsName : subject.dnsNames) {
        Text value(ASN1_IA5STRING_new());
        require(value != nullptr &&
                    ASN1_STRING_set(value.get(), dnsName.data(), static_cast<int>(dnsName.size())) == 1,
                "name \"" + dnsName + "\"");
        push(names.get(), GEN_DNS, std::move(value), dnsName);
    }
    for (const std::string& address : subject.ipAddresses) {
        push(names.get(), GEN_IPADD, Text(a2i_IPADDRESS(address.c_str())), address);
    }
    require(X509_add1_ext_i2d(certificate, NID_subject_alt_name, names.get(), 0, X509V3_ADD_DEFAULT) == 1,
            "add the alternative names");
}

void sign(X509* certificate, EVP_PKEY* key) {
    require(X509_sign(certificate, key, EVP_sha256()) > 0, "sign");
}

Certificate unsignedCertificate(std::string_view commonName, std::chrono::system_clock::time_point notBefore,
                                std::chrono::system_clock::time_point notAfter, EVP_PKEY* key) {
    Certificate certificate(X509_new());
    require(certificate != nullptr && X509_set_version(certificate.get(), X509_VERSION_3) == 1,
            "create a certificate");
    setRandomSerialNumber(certificate.get());
    setValidity(certificate.get(), notBefore, notAfter);
    setCommonName(certificate.get(), commonName);
    require(X509_set_pubkey(certificate.get(), key) == 1, "set the key");
    return certificate;
}

// Signed by `issuer`, or self-signed if there is none.
CertificateWithKey serverCertificate(const CertificateSubject& subject, X509* issuer, EVP_PKEY* issuerKey) {
    const Key key = newKey();
    const Certificate certificate =
        unsignedCertificate(subject.commonName, subject.notBefore, subject.notAfter, key.get());
    X509* const signer = issuer != nullptr ? issuer : certificate.get();
    require(X509_set_issuer_name(certificate.get(), X509_get_subject_name(signer)) == 1, "set the issuer");
    addExtension(certificate.get(), signer, NID_basic_constraints, "critical,CA:FALSE");
    addExtension(certificate.get(), signer, NID_key_usage, "critical,digitalSignature");
    addExtension(certificate.get(), signer, NID_ext_key_usage, "serverAuth");
    addExtension(certificate.get(), signer, NID_subject_key_identifier, "hash");
    if (issuer != nullptr) {
        addExtension(certificate.get(), signer, NID_authority_key_identifier, "keyid:always");
    }
    addAlternativeNames(certificate.get(), subject);
    sign(certificate.get(), issuerKey != nullptr ? issuerKey : key.get());
    return toPem(certificate.get(), key.get());
}

void replaceFile(const std::filesystem::path& path, std::string_view text, mode_t mode) {
    if (const auto written = AtomicFile(path).replace(text, mode); !written) {
        throw std::runtime_error("cannot write " + path.string() + ": " + written.error().message());
    }
}

}  // namespace

CertificateAuthority CertificateAuthority::create(std::string_view name,
                                                  std::chrono::system_clock::time_point notBefore,
                                                  std::chrono::system_clock::time_point notAfter) {
    const Key key = newKey();
    const Certificate certificate = unsignedCertificate(name, notBefore, notAfter, key.get());
    require(X509_set_issuer_name(certificate.get(), X509_get_subject_name(certificate.get())) == 1,
            "set the issuer");
    addExtension(certificate.get(), certificate.get(), NID_basic_constraints, "critical,CA:TRUE,pathlen:0");
    addExtension(certificate.get(), certificate.get(), NID_key_usage, "critical,keyCertSign,cRLSign");
    addExtension(certificate.get(), certificate.get(), NID_subject_key_identifier, "hash");
    sign(certificate.get(), key.get());
    return CertificateAuthority(toPem(certificate.get(), key.get()));
}

CertificateAuthority CertificateAuthority::fromPem(CertificateWithKey identity) {
    const Certificate certificate = parseCertificate(identity.certificate);
    const Key key = parseKey(identity.privateKey);
    require(X509_check_private_key(certificate.get(), key.get()) == 1,
            "use a key that does not match the certificate");
    require(X509_check_ca(certificate.get()) == 1, "issue certificates: not an authority's certificate");
    return CertificateAuthority(std::move(identity));
}

CertificateWithKey CertificateAuthority::issue(const CertificateSubject& subject) const {
    const Certificate issuer = parseCertificate(identity_.certificate);
    const Key key = parseKey(identity_.privateKey);
    return serverCertificate(subject, issuer.get(), key.get());
}

CertificateWithKey CertificateAuthority::selfSigned(const CertificateSubject& subject) {
    return serverCertificate(subject, nullptr, nullptr);
}

bool CertificateAuthority::vouchesFor(const CertificateWithKey& identity,
                                      const std::vector<std::string>& dnsNames,
                                      const std::vector<std::string>& ipAddresses,
                                      std::chrono::system_clock::time_point time) const {
    const Certificate root = parseCertificate(identity_.certificate);
    const Certificate certificate = parseCertificate(identity.certificate);
    const Key key = parseKey(identity.privateKey);
    const auto refused = [] {
        ERR_clear_error();
        return false;
    };

    if (X509_check_private_key(certificate.get(), key.get()) != 1) {
        return refused();
    }
    const Store store(X509_STORE_new());
    const StoreContext context(X509_STORE_CTX_new());
    require(store != nullptr && context != nullptr && X509_STORE_add_cert(store.get(), root.get()) == 1 &&
                X509_STORE_CTX_init(context.get(), store.get(), certificate.get(), nullptr) == 1,
            "prepare a verification");
    X509_STORE_CTX_set_time(context.get(), 0, std::chrono::system_clock::to_time_t(time));
    require(X509_STORE_CTX_set_purpose(context.get(), X509_PURPOSE_SSL_SERVER) == 1,
            "prepare a verification");
    if (X509_verify_cert(context.get()) != 1) {
        return refused();
    }
    for (const std::string& name : dnsNames) {
        if (X509_check_host(certificate.get(), name.data(), name.size(), 0, nullptr) != 1) {
            return refused();
        }
    }
    for (const std::string& address : ipAddresses) {
        if (X509_check_ip_asc(certificate.get(), address.c_str(), 0) != 1) {
            return refused();
        }
    }
    return true;
}

bool CertificateAuthority::isValidAt(std::chrono::system_clock::time_point time) const {
    const Certificate root = parseCertificate(identity_.certificate);
    std::time_t seconds = std::chrono::system_clock::to_time_t(time);
    return X509_cmp_time(X509_get0_notBefore(root.get()), &seconds) < 0 &&
           X509_cmp_time(X509_get0_notAfter(root.get()), &seconds) > 0;
}

void writeCertificateFile(const std::filesystem::path& path, std::string_view pem) {
    replaceFile(path, pem, 0644);
}

void writePrivateKeyFile(const std::filesystem::path& path, std::string_view pem) {
    replaceFile(path, pem, 0600);
}

}  // namespace vorna::devserver
