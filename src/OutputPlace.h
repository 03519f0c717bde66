#pragma once

#include <openssl/bio.h>
#include <openssl/buffer.h>

#include <cstddef>

/// Lets a memory BIO write to where its bytes are wanted, so that to fetch them moves none. What comes
/// between two placements is gathered in memory of the BIO's own.
///
/// Used by the thread that writes to the BIO. Goes after the BIO.
class OutputPlace {
 public:
  explicit OutputPlace(BIO* memory);
  ~OutputPlace();
  OutputPlace(const OutputPlace&) = delete;
  OutputPlace& operator=(const OutputPlace&) = delete;

  /// What is written from now on goes to `where`, which has `room` bytes and stays until `end`. It is about
  /// to be `expected` bytes, as a guess. Returns false, and does nothing, if bytes wait that were written
  /// before.
  bool begin(void* where, std::size_t room, std::size_t expected);

  /// Between `begin` and `end`: whether what waits is just the `length` bytes at `where`.
  bool holds(const void* where, std::size_t length) const;

  bool isBegun() const { return placed_.data != nullptr; }

  /// The bytes at the place are the caller's now, or nobody's; the BIO is empty.
  void end();

 private:
  BIO* const memory_;
  BUF_MEM* gathered_ = nullptr;
  BUF_MEM placed_ = {};
};

/// Before `length` bytes are written to `content`, which is empty: OpenSSL clears what a memory BIO grows by,
/// only for the write to fill it, but not what counts as there.
inline void spareClearing(BUF_MEM* content, std::size_t length) {
  content->length = length < content->max ? length : content->max;
}
