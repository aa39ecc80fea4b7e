#include "tlschannel.h"

#include <openssl/evp.h>
#include <openssl/ssl.h>
#include <openssl/x509.h>

namespace contract {

namespace {

struct FreeKey {
  void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
};
struct FreeCertificate {
  void operator()(X509* certificate) const { X509_free(certificate); }
};

void require(bool good, const char* what) {
  if (!good) qFatal("%s", what);
}

void certify(SSL_CTX* context) {
  const std::unique_ptr<EVP_PKEY, FreeKey> key(EVP_EC_gen("P-256"));
  const std::unique_ptr<X509, FreeCertificate> certificate(X509_new());
  constexpr long day = 86400;
  X509_set_version(certificate.get(), X509_VERSION_3);
  ASN1_INTEGER_set(X509_get_serialNumber(certificate.get()), 1);
  X509_gmtime_adj(X509_getm_notBefore(certificate.get()), -day);
  X509_gmtime_adj(X509_getm_notAfter(certificate.get()), day);
  X509_NAME* name = X509_get_subject_name(certificate.get());
  const auto* machine = reinterpret_cast<const unsigned char*>("localhost");
  X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, machine, -1, -1, 0);
  X509_set_issuer_name(certificate.get(), name);
  X509_set_pubkey(certificate.get(), key.get());
  require(X509_sign(certificate.get(), key.get(), EVP_sha256()) > 0, "no certificate");
  require(SSL_CTX_use_certificate(context, certificate.get()) == 1, "the certificate is not taken");
  require(SSL_CTX_use_PrivateKey(context, key.get()) == 1, "the key is not taken");
}

}  // namespace

void TlsChannel::Free::operator()(ssl_ctx_st* context) const {
  SSL_CTX_free(context);
}

void TlsChannel::Free::operator()(ssl_st* channel) const {
  SSL_free(channel);
}

TlsChannel::TlsChannel(Newest newest) : context_(SSL_CTX_new(TLS_server_method())) {
  SSL_CTX_set_max_proto_version(context_.get(), newest == Newest::Tls12 ? TLS1_2_VERSION : TLS1_3_VERSION);
  certify(context_.get());
  channel_.reset(SSL_new(context_.get()));
  SSL_set_bio(channel_.get(), BIO_new(BIO_s_mem()), BIO_new(BIO_s_mem()));
  SSL_set_accept_state(channel_.get());
}

TlsChannel::~TlsChannel() = default;

bool TlsChannel::isReady() const {
  return SSL_is_init_finished(channel_.get()) != 0;
}

QByteArray TlsChannel::read(const QByteArray& received) {
  BIO_write(SSL_get_rbio(channel_.get()), received.constData(), static_cast<int>(received.size()));
  QByteArray text;
  char piece[16384];
  for (int got = 0; (got = SSL_read(channel_.get(), piece, sizeof piece)) > 0;) text.append(piece, got);
  return text;
}

QByteArray TlsChannel::encrypted(const QByteArray& text) {
  if (!text.isEmpty())
    require(SSL_write(channel_.get(), text.constData(), static_cast<int>(text.size())) == text.size(),
            "nothing can be encrypted");
  return pending();
}

QByteArray TlsChannel::pending() {
  QByteArray bytes;
  char piece[16384];
  for (int got = 0; (got = BIO_read(SSL_get_wbio(channel_.get()), piece, sizeof piece)) > 0;)
    bytes.append(piece, got);
  return bytes;
}

}  // namespace contract
