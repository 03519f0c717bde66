#ifndef PHONE_PROGRAM_CONSOLE_H
#define PHONE_PROGRAM_CONSOLE_H

#include "phone/PhoneSession.h"

namespace phone {

/// Tells the user what happens on a link: log lines, and on a terminal a line that shows the progress.
class Console : public LinkObserver {
 public:
  /// Both outlive the console.
  Console(PhoneLink* link, Timers* timers);

  /// Tells of the troubles of `session` from now on, and if stderr is a terminal of its progress.
  void watch(PhoneSession* session);

  void onState(LinkState state) override;
  void onMessage(const Message& message) override;
  void onViolation(const std::string& what) override;

 private:
  void draw();
  void clear();
  void warn(int* times, const std::string& what);
  void tellServices() const;

  PhoneLink* link_;
  Timers* timers_;
  const PhoneSession* session_ = nullptr;
  bool drawn_ = false;
  int violations_ = 0;
  int unexpected_ = 0;
};

}  // namespace phone

#endif
