#pragma once

#include <functional>
#include <string>
#include <utility>

namespace test {

/// Makes a call that the library makes into the platform fail, for as long as this object lives. Unit tests
/// only: they are linked so that these calls take a detour. One at a time, and not from inside a library of
/// the platform.
///     FailingCall failing("pthread_create", 2);   // the second call from now on, and no other
/// It counts them as well, and with NEVER does nothing else; with EVERY none succeeds. A handshake that fails
/// has taken its step all the same, and what it has to say waits: only the result is 0. A
/// pthread_setschedparam that does not fail succeeds without effect, since few users have the right to it.
/// Throws std::invalid_argument for a name that takes no detour.
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
  /// SSL_CTX_set_options the options, for BIO_set_ssl_renegotiate_timeout the seconds, for
  /// pthread_setschedparam the policy times 1000 and the priority, for pthread_mutex_lock the mutex's
  /// address.
  unsigned long long number() const;
};

/// Does something in the midst of an operation, for which another thread would have to be lucky: the next
/// `call` that is about `number`, on whichever thread, runs `event`. sem_post runs it once it has posted; the
/// others, sem_wait, sched_yield, pthread_mutex_lock, pthread_join (about that thread) and "operator new"
/// (about that many bytes), before anything else. The latest one counts. To be destroyed when no other thread
/// is at such a call any more. Throws std::invalid_argument for a call that takes no detour.
class EventAt {
 public:
  static constexpr unsigned long long ANY = ~0ULL;

  EventAt(const char* call, std::function<void()> event, unsigned long long number = ANY);
  ~EventAt();
  EventAt(const EventAt&) = delete;
  EventAt& operator=(const EventAt&) = delete;

  /// For the detours: `call` is being made. Runs the event that waits for it, if there is one.
  static void reached(const char* call, unsigned long long number = ANY);

 protected:
  /// What each such call runs, told what it is about.
  EventAt(const char* call, std::function<void(unsigned long long)> event);

 private:
  const std::string name;
  const unsigned long long awaited;
  const std::function<void(unsigned long long)> happens;
  const bool repeats;
};

/// The same in the midst of an operation that queues.
struct EventAtPost : EventAt {
  explicit EventAtPost(std::function<void()> event) : EventAt("sem_post", std::move(event)) {}
};

/// The same at each `call` for as long as this object lives, but for those that `event` itself makes. It is
/// told the number that the call is about.
struct EventAtEach : EventAt {
  EventAtEach(const char* call, std::function<void(unsigned long long)> event)
      : EventAt(call, std::move(event)) {}
};

}  // namespace test
