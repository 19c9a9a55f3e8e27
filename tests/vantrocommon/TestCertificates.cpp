#include "TestCertificates.h"

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace vantrocommontest {
namespace {

using Key = std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)>;
using Certificate = std::unique_ptr<X509, decltype(&X509_free)>;

void Check(bool ok, const char* step) {
    if (!ok) {
        throw std::runtime_error(std::string("making test certificates: ") + step);
    }
}

Key NewKey() {
    Key key(EVP_EC_gen("P-256"), &EVP_PKEY_free);
    Check(key != nullptr, "key");
    return key;
}

Certificate NewCertificate(EVP_PKEY* key, const char* commonName, long serial) {
    Certificate certificate(X509_new(), &X509_free);
    Check(certificate != nullptr, "certificate");
    X509* x509 = certificate.get();
    Check(X509_set_version(x509, 2) == 1, "version");
    ASN1_INTEGER_set(X509_get_serialNumber(x509), serial);
    // A minute of slack either side of now keeps clock steps between processes harmless.
    X509_gmtime_adj(X509_getm_notBefore(x509), -60);
    X509_gmtime_adj(X509_getm_notAfter(x509), 3600);
    Check(X509_set_pubkey(x509, key) == 1, "public key");
    X509_NAME* name = X509_get_subject_name(x509);
    Check(X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC,
                                     reinterpret_cast<const unsigned char*>(commonName), -1, -1,
                                     0) == 1,
          "subject");
    return certificate;
}

void AddExtension(X509* certificate, X509* issuer, int nid, const char* value) {
    X509V3_CTX context;
    X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
    X509_EXTENSION* extension = X509V3_EXT_conf_nid(nullptr, &context, nid, value);
    Check(extension != nullptr, value);
    const bool added = X509_add_ext(certificate, extension, -1) == 1;
    X509_EXTENSION_free(extension);
    Check(added, value);
}

void WritePem(const std::filesystem::path& path, X509* certificate, EVP_PKEY* key) {
    std::unique_ptr<FILE, decltype(&std::fclose)> file(std::fopen(path.c_str(), "w"), &std::fclose);
    Check(file != nullptr, "opening a PEM file");
    if (certificate != nullptr) {
        Check(PEM_write_X509(file.get(), certificate) == 1, "writing a certificate");
    }
    if (key != nullptr) {
        Check(PEM_write_PrivateKey(file.get(), key, nullptr, nullptr, 0, nullptr, nullptr) == 1,
              "writing a key");
    }
}

}  // namespace

TestCertificates TestCertificates::Make(const std::filesystem::path& directory) {
    const Key authorityKey = NewKey();
    const Certificate authority =
        NewCertificate(authorityKey.get(), "vantrocommon test authority", 1);
    X509_set_issuer_name(authority.get(), X509_get_subject_name(authority.get()));
    AddExtension(authority.get(), authority.get(), NID_basic_constraints, "critical,CA:TRUE");
    AddExtension(authority.get(), authority.get(), NID_key_usage, "critical,keyCertSign,cRLSign");
    AddExtension(authority.get(), authority.get(), NID_subject_key_identifier, "hash");
    Check(X509_sign(authority.get(), authorityKey.get(), EVP_sha256()) > 0, "signing the CA");

    const Key serverKey = NewKey();
    const Certificate server = NewCertificate(serverKey.get(), "127.0.0.1", 2);
    X509_set_issuer_name(server.get(), X509_get_subject_name(authority.get()));
    AddExtension(server.get(), authority.get(), NID_basic_constraints, "critical,CA:FALSE");
    AddExtension(server.get(), authority.get(), NID_ext_key_usage, "serverAuth");
    AddExtension(server.get(), authority.get(), NID_subject_alt_name, "IP:127.0.0.1");
    AddExtension(server.get(), authority.get(), NID_authority_key_identifier, "keyid");
    Check(X509_sign(server.get(), authorityKey.get(), EVP_sha256()) > 0, "signing the server's");

    TestCertificates files{directory / "ca.pem", directory / "server.pem",
                           directory / "server-key.pem"};
    WritePem(files.authorityCertificate, authority.get(), nullptr);
    WritePem(files.serverCertificate, server.get(), nullptr);
    WritePem(files.serverKey, nullptr, serverKey.get());
    return files;
}

}  // namespace vantrocommontest
