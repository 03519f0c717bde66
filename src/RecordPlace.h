#pragma once

#include <openssl/bio.h>

/// Has what OpenSSL writes for a thread gathered in a memory BIO, or a record laid where it is wanted, so
/// that to fetch it moves no byte.
///
/// Only what a thread writes between `open` and `close` counts. Whatever else OpenSSL has to say is dropped:
/// the alert that answers a damaged record on the reader thread would be written amid what the writer
/// enciphers, and it could never leave, since behind it OpenSSL enciphers nothing any more.
class RecordPlace {
 public:
  RecordPlace() = default;
  RecordPlace(const RecordPlace&) = delete;
  RecordPlace& operator=(const RecordPlace&) = delete;

  /// OpenSSL's memory BIO, but for the writing. Null if there is no memory.
  static const BIO_METHOD* memoryBio();

  /// From now to `close`, what this thread writes to `memory` is kept: one record of application data at
  /// `where`, if it fits into `room` bytes and nothing older waits, all else in `memory`.
  void open(BIO* memory, void* where = nullptr, unsigned int room = 0);
  void close();

  /// Whatever lies at the place is nobody's.
  void forget() { filled_ = 0; }

  /// How many bytes lie at the place. They are older than what waits in the BIO.
  unsigned int filled() const { return filled_; }

  /// Fetches up to `length` of them, from where they lie to there or elsewhere. Returns the count.
  unsigned int take(void* destination, unsigned int length);

 private:
  static int write(BIO* memory, const char* data, int size);
  bool accepts(BIO* memory, const char* data, int size) const;

  BIO* memory_ = nullptr;
  unsigned char* where_ = nullptr;
  unsigned int room_ = 0;
  unsigned int filled_ = 0;
};
