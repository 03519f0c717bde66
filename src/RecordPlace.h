#pragma once

#include <openssl/bio.h>

/// Has the record that a thread is about to write to a memory BIO laid where it is wanted, so that to fetch
/// it moves no byte.
///
/// Only the thread that opened the place writes there. Whoever else writes to the BIO meanwhile, such as a
/// reader whom OpenSSL has answer a damaged record by an alert, writes to the BIO's own memory as ever.
class RecordPlace {
 public:
  RecordPlace() = default;
  RecordPlace(const RecordPlace&) = delete;
  RecordPlace& operator=(const RecordPlace&) = delete;

  /// OpenSSL's memory BIO, which besides looks for the place that the writing thread has open.
  static const BIO_METHOD* memoryBio();

  /// From now to `close`, on this thread: one record of application data for `memory` goes to `where`, if it
  /// fits into `room` bytes and nothing older waits in `memory`. All else goes to `memory`.
  void open(BIO* memory, void* where, unsigned int room);
  void close();

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
