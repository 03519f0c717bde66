#pragma once

namespace test {

/// Makes a call that the library makes into the platform fail, for as long as this object lives. Unit tests
/// only: they are linked so that these calls take a detour. One at a time, and not from inside a library of
/// the platform.
///     FailingCall failing("pthread_create", 2);   // the second call from now on, and no other
/// It counts them as well, and with NEVER does nothing else. Throws std::invalid_argument for a name that
/// takes no detour.
class FailingCall {
 public:
  static constexpr int NEVER = 0;

  explicit FailingCall(const char* name, int which = 1);
  ~FailingCall();
  FailingCall(const FailingCall&) = delete;
  FailingCall& operator=(const FailingCall&) = delete;

  /// How often the call has been made so far, the failed one included.
  int calls() const;
};

}  // namespace test
