#pragma once

#include <functional>

namespace test {

/// Makes a call that the library makes into the platform fail, for as long as this object lives. Unit tests
/// only: they are linked so that these calls take a detour. One at a time, and not from inside a library of
/// the platform.
///     FailingCall failing("pthread_create", 2);   // the second call from now on, and no other
/// It counts them as well, and with NEVER does nothing else; with EVERY none succeeds. A handshake that fails
/// has taken its step all the same, and what it has to say waits: only the result is 0. Throws
/// std::invalid_argument for a name that takes no detour.
class FailingCall {
 public:
  static constexpr int NEVER = 0;
  static constexpr int EVERY = -1;

  explicit FailingCall(const char* name, int which = 1);
  ~FailingCall();
  FailingCall(const FailingCall&) = delete;
  FailingCall& operator=(const FailingCall&) = delete;

  /// How often the call has been made so far, the failed one included.
  int calls() const;

  /// The number that the latest call was about: for sem_wait the semaphore's count as it was before, for
  /// SSL_CTX_set_options the options, for BIO_set_ssl_renegotiate_timeout the seconds.
  unsigned long long number() const;
};

/// Does something in the midst of an operation that queues, for which another thread would have to be lucky:
/// the next sem_post, on whichever thread, runs `event` once it has posted. The latest one counts.
class EventAtPost {
 public:
  explicit EventAtPost(std::function<void()> event);
  ~EventAtPost();
  EventAtPost(const EventAtPost&) = delete;
  EventAtPost& operator=(const EventAtPost&) = delete;

 private:
  const std::function<void()> happens;
};

}  // namespace test
