#include "SslWrapper.h"

#include <openssl/bio.h>
#include <openssl/buffer.h>
#include <openssl/err.h>
#include <openssl/pem.h>
#include <openssl/ssl.h>

#include <algorithm>

#include "BigEndian.h"
#include "Log.h"
#include "OpenSslState.h"
#include "RecordPlace.h"
#include "protos.pb.h"

// The handshake and the two pipelines. Setting up and tearing down is in SslSetup.cpp.

namespace {

constexpr unsigned int TYPE_SIZE = 2;
// Many times what OpenSSL accepts in one flight of a handshake. What a phone announces beyond it is not
// copied.
constexpr unsigned int MOST_HANDSHAKE_BYTES = 1U << 20;

static_assert(SslWrapper::MOST_EXPANSION == SSL3_RT_HEADER_LENGTH + SSL3_RT_MAX_ENCRYPTED_OVERHEAD);

bool isPartialResult(int error) { return error == SSL_ERROR_WANT_READ || error == SSL_ERROR_WANT_WRITE; }

/// Logs why a read failed with `result`; returns what SSL_get_error says of it.
int logReadFailure(const SSL* ssl, int result) {
  const char* file = nullptr;
  int line = 0;
  char text[256];  // as much as OpenSSL's own, which all threads of the process would share
  ERR_error_string_n(ERR_get_error_all(&file, &line, nullptr, nullptr, nullptr), text, sizeof text);
  const int sslError = SSL_get_error(ssl, result);
  print_critical_i("[LHU] Detailed error=%s file=%s line=%d sslError=%d", text,
                   file == nullptr ? "(null)" : file, line, sslError);
  return sslError;
}

/// What OpenSSL did not take of former messages counts too: after a handshake it takes nothing.
unsigned int roomForHandshake(BIO* memory) {
  return MOST_HANDSHAKE_BYTES -
         std::min(MOST_HANDSHAKE_BYTES, static_cast<unsigned int>(BIO_pending(memory)));
}

/// Throws away what a former frame left in `memory`, which is about to be given `length` bytes.
void emptyFor(unsigned int length, BIO* memory) {
  BUF_MEM* content = nullptr;
  if (BIO_get_mem_ptr(memory, &content) != 1) return;
  if (content->length > 0) {
    print_critical_i("[LHU] Throwing away %d bytes", static_cast<int>(content->length));
    static_cast<void>(BIO_reset(memory));
  }
  // OpenSSL clears what a memory BIO grows by, only for the write to fill it; but not what counts as there.
  content->length = std::min<std::size_t>(content->max, length);
}

/// Whether one of the records is part of a handshake. OpenSSL would begin a new one, on the reader thread and
/// amid what the writer enciphers with the same SSL; and no link needs one.
bool holdsHandshake(const unsigned char* records, unsigned int length) {
  for (unsigned int at = 0; at + SSL3_RT_HEADER_LENGTH <= length;) {
    if (records[at] == SSL3_RT_HANDSHAKE) return true;
    at += SSL3_RT_HEADER_LENGTH + readBigEndian16(records + at + 3);
  }
  return false;
}

}  // namespace

void SslWrapper::setCertificateVerificationTime(time_t time) {
  verifyTime = time;
  verifyTimeSet = true;
}

int SslWrapper::handshake(void* data, unsigned int length, IoBuffer* out) {
  if (ssl == nullptr) return -1;  // the host went on without credentials: no phone may bring it down by that
  forgetOpenSslErrors();
  if (data != nullptr)
    BIO_write(readBio, data, static_cast<int>(std::min(length, roomForHandshake(readBio))));
  place->open(writeBio);
  int result = SSL_do_handshake(ssl);
  place->close();
  // What stands in one record with its last message would begin another handshake as soon as something is
  // read.
  if (result == 1 && SSL_has_pending(ssl) == 1) result = 0;
  const int error = SSL_get_error(ssl, result);
  print_critical_i("[LHU] ssl state=%s, ret: %d, err: %d", SSL_state_string_long(ssl), result, error);
  ERR_remove_thread_state(nullptr);
  forgetOpenSslErrors();

  if (result == 1) {
    state = SSL_WRAPPER_CONNECTED;
    print_critical_i("[LHU] SSL version=%s Cipher name=%s", SSL_get_version(ssl), SSL_get_cipher_name(ssl));
  } else if (isPartialResult(error)) {
    takeHandshakeOutput(out);
  } else {
    state = SSL_WRAPPER_FAILED;
  }
  return result;
}

void SslWrapper::takeHandshakeOutput(IoBuffer* out) {
  const int pending = static_cast<int>(BIO_pending(writeBio));
  if (pending <= 0) return;
  out->resize(static_cast<unsigned int>(pending) + TYPE_SIZE);
  writeBigEndian16(out->data, MESSAGE_SSL_HANDSHAKE);
  BIO_read(writeBio, out->data + TYPE_SIZE, pending);
}

bool SslWrapper::verifyPeer() {
  forgetOpenSslErrors();
  X509_STORE_CTX* const context = X509_STORE_CTX_new();
  X509* const peer = SSL_get_peer_certificate(ssl);
  STACK_OF(X509)* const chain = SSL_get_peer_cert_chain(ssl);
  X509_STORE_CTX_init(context, certificateStore, peer, nullptr);
  if (chain != nullptr) X509_STORE_CTX_set_chain(context, chain);
  if (verifyTimeSet) X509_STORE_CTX_set_time(context, 0, verifyTime);

  const int result = X509_verify_cert(context);
  const int code = X509_STORE_CTX_get_error(context);
  print_critical_i("[LHU] Verify, ret: %d, err_code: %d, returned: %s", result, code,
                   X509_verify_cert_error_string(code));
  X509_STORE_CTX_cleanup(context);
  X509_STORE_CTX_free(context);
  X509_free(peer);
  return result == 1;
}

unsigned int SslWrapper::encryptionPipelinePlaced() const { return place != nullptr ? place->filled() : 0; }

int SslWrapper::encryptionPipelineEnqueue(void* data, unsigned int length) {
  return encryptionPipelineEnqueue(data, length, nullptr, 0);
}

int SslWrapper::encryptionPipelineEnqueue(void* data, unsigned int length, void* where, unsigned int room) {
  // What the host left in OpenSSL's error queue does no harm here: nothing asks for the reason of a failure.
  // Of more than one record the first would be laid over the plaintext of the next.
  if (place != nullptr) place->open(writeBio, where, length <= SSL3_RT_MAX_PLAIN_LENGTH ? room : 0);
  const int count = BIO_write(sslBio, data, static_cast<int>(length));
  if (place != nullptr) place->close();
  if (count < 1) {
    if (place != nullptr) place->forget();
    print_critical_i("[LHU] Failed to write data to mSsl!");
    return count;
  }
  return static_cast<int>(encryptionPipelinePlaced()) + static_cast<int>(BIO_pending(writeBio));
}

int SslWrapper::encryptionPipelineDequeue(void* data, unsigned int length) {
  const unsigned int placed = place != nullptr ? place->take(data, length) : 0;
  if (placed > 0 && placed == length) return static_cast<int>(placed);
  const int count = BIO_read(writeBio, static_cast<char*>(data) + placed, static_cast<int>(length - placed));
  if (placed > 0) return static_cast<int>(placed) + std::max(count, 0);
  if (count < 0) print_critical_i("[LHU] Failed to read from encryption pipeline.");
  return count;
}

int SslWrapper::decryptionPipelineEnqueue(void* data, unsigned int length) {
  int count = -1;
  if (!holdsHandshake(static_cast<unsigned char*>(data), length)) {
    emptyFor(length, readBio);
    count = BIO_write(readBio, data, static_cast<int>(length));
  }
  if (count < 1) {
    print_critical_i("[LHU] Failed to write data to the read bio!");
    return count;
  }
  // What decryptionPipelinePending tells, since `readBio` was empty and now holds just these bytes.
  const int plain = SSL_pending(ssl);
  return plain != 0 ? plain : count;
}

int SslWrapper::decryptionPipelinePending() {
  if (ssl == nullptr) return 0;
  // What BIO_pending(sslBio) tells, by a shorter way: plaintext of the record under way, else ciphertext.
  const int plain = SSL_pending(ssl);
  return plain != 0 ? plain : static_cast<int>(BIO_pending(readBio));
}

int SslWrapper::decryptionPipelineDequeue(void* data, unsigned int length) {
  bool retry = false;
  for (;;) {
    const int count = BIO_read(sslBio, data, static_cast<int>(length));
    if (count >= 0) {
      if (retry) continue;
      return count;
    }
    // Where only bytes lack OpenSSL reports nothing, so what is in its queue then was left there by the host.
    if (SSL_want_read(ssl)) forgetOpenSslErrors();
    const int sslError = logReadFailure(ssl, count);
    if (!BIO_should_retry(sslBio)) return count;
    retry = sslError != SSL_ERROR_WANT_READ;
    if (!retry) return count;
  }
}
