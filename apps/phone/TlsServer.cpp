#include "phone/TlsServer.h"

#include "phone/OpenSslTypes.h"

namespace phone {

struct TlsServer::State {
  SslContextPointer context;
  SslPointer ssl;
  BIO* fromPeer = nullptr;  // Both BIOs belong to ssl.
  BIO* toPeer = nullptr;
};

namespace {

constexpr std::size_t recordHeader = 5;

std::string lastError() {
  const unsigned long code = ERR_peek_last_error();
  const char* reason = code == 0 ? nullptr : ERR_reason_error_string(code);
  return reason != nullptr ? reason : "no reason given";
}

SslContextPointer makeContext(const TlsOptions& options) {
  SslContextPointer context(SSL_CTX_new(TLS_server_method()));
  SSL_CTX_set_min_proto_version(context.get(), TLS1_2_VERSION);
  SSL_CTX_set_max_proto_version(context.get(), TLS1_2_VERSION);
  // No ticket and no session: a link is never resumed, and the last flight stays as small as it can be.
  SSL_CTX_set_options(context.get(), SSL_OP_NO_TICKET | SSL_OP_NO_RENEGOTIATION | SSL_OP_NO_COMPRESSION);
  SSL_CTX_set_session_cache_mode(context.get(), SSL_SESS_CACHE_OFF);
  if (options.verifyClient) {
    SSL_CTX_set_verify(context.get(), SSL_VERIFY_PEER | SSL_VERIFY_FAIL_IF_NO_PEER_CERT, nullptr);
  }
  return context;
}

bool useCredentials(SSL_CTX* context, const Credentials& credentials, std::string* error) {
  const std::vector<X509Pointer> roots = readCertificates(credentials.root);
  const std::vector<X509Pointer> own = readCertificates(credentials.certificate);
  const KeyPointer key = readKey(credentials.key);
  if (roots.empty()) {
    *error = "the root certificate is not readable PEM";
  } else if (own.empty()) {
    *error = "the phone's certificate is not readable PEM";
  } else if (!key) {
    *error = "the phone's private key is not readable PEM without a passphrase";
  } else if (SSL_CTX_use_certificate(context, own[0].get()) != 1) {
    *error = "the phone's certificate cannot be used: " + lastError();
  } else if (SSL_CTX_use_PrivateKey(context, key.get()) != 1 || SSL_CTX_check_private_key(context) != 1) {
    *error = "the phone's private key does not belong to its certificate";
  }
  if (!error->empty()) return false;

  for (std::size_t i = 1; i < own.size(); ++i) SSL_CTX_add1_chain_cert(context, own[i].get());
  for (const X509Pointer& root : roots) {
    X509_STORE_add_cert(SSL_CTX_get_cert_store(context), root.get());
    SSL_CTX_add_client_CA(context, root.get());
  }
  return true;
}

bool isWholeRecords(const Bytes& bytes) {
  std::size_t at = 0;
  while (bytes.size() - at >= recordHeader) {
    const std::size_t length = readBigEndian<std::uint16_t>(&bytes[at + 3]);
    if (length > bytes.size() - at - recordHeader) return false;
    at += recordHeader + length;
  }
  return at == bytes.size() && at > 0;
}

}  // namespace

TlsServer::TlsServer(std::unique_ptr<State> state) : state_(std::move(state)) {}
TlsServer::~TlsServer() = default;

std::unique_ptr<TlsServer> TlsServer::create(const Credentials& credentials, const TlsOptions& options,
                                             std::string* error) {
  error->clear();
  ERR_clear_error();
  auto state = std::make_unique<State>();
  state->context = makeContext(options);
  const bool usable = useCredentials(state->context.get(), credentials, error);
  if (usable && SSL_CTX_set_cipher_list(state->context.get(), options.ciphers.c_str()) != 1) {
    *error = "no usable cipher suite in \"" + options.ciphers + "\"";
  }
  ERR_clear_error();
  if (!error->empty()) return nullptr;

  state->ssl.reset(SSL_new(state->context.get()));
  state->fromPeer = BIO_new(BIO_s_mem());
  state->toPeer = BIO_new(BIO_s_mem());
  SSL_set_bio(state->ssl.get(), state->fromPeer, state->toPeer);
  SSL_set_accept_state(state->ssl.get());
  return std::unique_ptr<TlsServer>(new TlsServer(std::move(state)));
}

TlsServer::Step TlsServer::handshake(const std::uint8_t* data, std::size_t size, Bytes* out) {
  ERR_clear_error();
  if (size > 0) BIO_write(state_->fromPeer, data, static_cast<int>(size));
  const int result = SSL_do_handshake(state_->ssl.get());
  const int reason = SSL_get_error(state_->ssl.get(), result);
  if (result != 1 && reason != SSL_ERROR_WANT_READ) describeFailure();
  takeOutput(out);
  if (result == 1) established_ = true;
  if (result == 1) return Step::established;
  return reason == SSL_ERROR_WANT_READ ? Step::proceeding : Step::failed;
}

Bytes TlsServer::encrypt(const std::uint8_t* data, std::size_t size) {
  ERR_clear_error();
  Bytes records;
  if (size > 0) SSL_write(state_->ssl.get(), data, static_cast<int>(size));
  takeOutput(&records);
  return records;
}

bool TlsServer::decrypt(const Bytes& records, Bytes* plain) {
  ERR_clear_error();
  plain->clear();
  if (!isWholeRecords(records)) {
    error_ = "the payload is not made of whole TLS records";
    return false;
  }
  BIO_write(state_->fromPeer, records.data(), static_cast<int>(records.size()));
  // Records are always larger than what they hold, so one byte is left over to ask for the end with.
  return readAll(records.size(), plain);
}

bool TlsServer::readAll(std::size_t most, Bytes* plain) {
  plain->resize(most);
  std::size_t size = 0;
  int got = 0;
  while ((got = SSL_read(state_->ssl.get(), plain->data() + size, static_cast<int>(most - size))) > 0) {
    size += static_cast<std::size_t>(got);
  }
  plain->resize(size);
  const int reason = SSL_get_error(state_->ssl.get(), got);
  if (reason == SSL_ERROR_WANT_READ) return true;
  if (reason == SSL_ERROR_ZERO_RETURN) {
    error_ = "TLS was closed";
  } else {
    describeFailure();
  }
  return false;
}

void TlsServer::takeOutput(Bytes* out) {
  out->resize(static_cast<std::size_t>(BIO_pending(state_->toPeer)));
  if (!out->empty()) BIO_read(state_->toPeer, out->data(), static_cast<int>(out->size()));
}

void TlsServer::describeFailure() {
  const long verdict = SSL_get_verify_result(state_->ssl.get());
  error_ = verdict == X509_V_OK
               ? lastError()
               : std::string("its certificate does not hold: ") + X509_verify_cert_error_string(verdict);
  ERR_clear_error();
}

std::string TlsServer::cipher() const { return SSL_get_cipher_name(state_->ssl.get()); }

std::string TlsServer::peerName() const {
  const X509Pointer peer(SSL_get1_peer_certificate(state_->ssl.get()));
  if (!peer) return {};
  const BioPointer text(BIO_new(BIO_s_mem()));
  X509_NAME_print_ex(text.get(), X509_get_subject_name(peer.get()), 0, XN_FLAG_ONELINE);
  std::string name(static_cast<std::size_t>(BIO_pending(text.get())), '\0');
  if (!name.empty()) BIO_read(text.get(), name.data(), static_cast<int>(name.size()));
  return name;
}

}  // namespace phone
