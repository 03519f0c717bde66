#pragma once

#include <atomic>
#include <ctime>
#include <string>

#include "IoBuffer.h"
#include "VantryExport.h"

// OpenSSL's types, so that a host needs no OpenSSL headers.
typedef struct bio_st BIO;
typedef struct evp_pkey_st EVP_PKEY;
typedef struct ssl_ctx_st SSL_CTX;
typedef struct ssl_st SSL;
typedef struct x509_st X509;
typedef struct x509_store_st X509_STORE;

class RecordPlace;

/// The values of SslWrapper::state, kept for inspection.
enum SslWrapperState : int {
  SSL_WRAPPER_READY = 1,      ///< after a successful init
  SSL_WRAPPER_CONNECTED = 3,  ///< the handshake is done
  SSL_WRAPPER_FAILED = 4,     ///< the handshake failed outright
};

/// A TLS 1.2 client without a socket: ciphertext goes in and comes out through memory, so that TLS records
/// can travel inside frames. The Controller owns the one of a link.
///
///     encryptionPipeline...   plaintext  -> Enqueue -> [ sslBio  TLS writeBio ] -> Dequeue -> ciphertext
///     decryptionPipeline...   ciphertext -> Enqueue -> [ readBio TLS sslBio   ] -> Dequeue -> plaintext
///
/// Threads: init before the link starts; the handshake on the reader thread; after it the decrypting pipeline
/// on the reader thread and the encrypting one on the writer thread, at the same time and without a lock;
/// shutdown after both have ended. A new handshake needs a new wrapper. What the wrapper holds is freed by
/// shutdown and by nothing else.
///
/// The two pipelines share one SSL, and what OpenSSL notes of the last call: while the writer enciphers, the
/// reason told for a failed read may be the wrong one. A damaged record ends the link; OpenSSL enciphers an
/// alert for it on the reader thread, which is not sent, but possibly amid what the writer enciphers. That
/// may damage what is sent from then on; with ChaCha20-Poly1305, if a phone chooses it, it can end the
/// process, for that cipher wipes the state that the writer is using.
class VANTRY_EXPORT SslWrapper {
 public:
  SslWrapper() = default;
  SslWrapper(const SslWrapper&) = delete;
  SslWrapper& operator=(const SslWrapper&) = delete;

  /// Before `init` or the handshake: certificates are judged as of `time` instead of the system clock.
  void setCertificateVerificationTime(time_t time);

  /// Once: takes the trust anchor for the phone's certificate and this head unit's own certificate and key,
  /// all as PEM text; the strings are not needed afterwards. The key has no passphrase: for one that has,
  /// OpenSSL would ask on the process's terminal. Returns false, with the reason logged, on failure: the link
  /// must then not be started, and shutdown, which is due then as well, frees what was allocated. A second
  /// call leaks what the first one made.
  [[nodiscard]] bool init(const std::string& rootCertificatePem, const std::string& clientCertificatePem,
                          const std::string& privateKeyPem);

  /// Once at most, also after a failed `init`: frees everything and runs OpenSSL's global clean-up. Nothing
  /// but destruction is allowed afterwards.
  void shutdown();

  /// Feeds the phone's handshake bytes (`data` null to begin) and takes a step. Of more than 1 MiB, many
  /// times what OpenSSL accepts in one flight, only the first 1 MiB is looked at; and no more is kept of what
  /// comes when the handshake has ended. Returns 1 when the handshake is done; a negative number with a whole
  /// MESSAGE_SSL_HANDSHAKE in `out` when that is to be sent; anything else is a failure, as without a
  /// successful `init`, or when more than the phone's last message stands in the record of that message.
  int handshake(void* data, unsigned int length, IoBuffer* out);

  /// After the handshake: whether the phone's certificate chain leads to the root. No name is compared.
  bool verifyPeer();

  /// Enciphers `length` bytes. Returns the number of ciphertext bytes to fetch, or below 1 on failure.
  int encryptionPipelineEnqueue(void* data, unsigned int length);

  /// The same, but has the record laid at `where`, which is the caller's and has `room` bytes. To fetch it
  /// from there to there moves no byte. The plaintext may lie there too. `where` must stay until then, unless
  /// this fails. What does not fit, is several records, or stands behind older ciphertext is kept as ever.
  int encryptionPipelineEnqueue(void* data, unsigned int length, void* where, unsigned int room);

  /// How many of the ciphertext bytes to fetch lie at the latest `where`: they come first. Never fails.
  unsigned int encryptionPipelinePlaced() const;

  /// How much longer than its plaintext the record of a fragment can get, whatever the cipher.
  static constexpr unsigned int MOST_EXPANSION = 325;

  /// Fetches up to `length` ciphertext bytes. Returns the count, negative on failure.
  int encryptionPipelineDequeue(void* data, unsigned int length);

  /// Takes the ciphertext of one frame; bytes that an earlier frame left over are thrown away first. Returns
  /// what decryptionPipelinePending does, or below 1 on failure. Records of a handshake are refused: there is
  /// no second one.
  int decryptionPipelineEnqueue(void* data, unsigned int length);

  /// Fetches up to `length` plaintext bytes. Returns the count, negative on failure or when a record is
  /// incomplete.
  int decryptionPipelineDequeue(void* data, unsigned int length);

  /// An upper limit for the plaintext bytes that wait; 0 if there are none.
  int decryptionPipelinePending();

  /// Any thread: 0 before `init`, then an SslWrapperState.
  int currentState() const { return state; }

 private:
  bool createContext();
  bool createConnection();
  bool createCertificateStore();
  void takeHandshakeOutput(IoBuffer* out);

  std::atomic<int> state{0};
  X509* rootCertificate = nullptr;
  X509* clientCertificate = nullptr;
  BIO* readBio = nullptr;
  BIO* writeBio = nullptr;
  BIO* sslBio = nullptr;
  EVP_PKEY* privateKey = nullptr;
  SSL_CTX* sslContext = nullptr;
  SSL* ssl = nullptr;
  X509_STORE* certificateStore = nullptr;
  bool verifyTimeSet = false;
  time_t verifyTime = 0;
  RecordPlace* place = nullptr;
};
