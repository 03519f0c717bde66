#pragma once

#include <openssl/err.h>

/// Empties this thread's OpenSSL error queue. A stale entry, left there by other code of the host, would make
/// SSL_get_error report a failure that never happened. The test makes it nearly free where the queue is
/// empty.
inline void forgetOpenSslErrors() {
  if (ERR_peek_error() != 0) ERR_clear_error();
}
