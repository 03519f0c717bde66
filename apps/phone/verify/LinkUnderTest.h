#ifndef PHONE_VERIFY_LINKUNDERTEST_H
#define PHONE_VERIFY_LINKUNDERTEST_H

#include <functional>
#include <memory>
#include <string>

#include "phone/PhoneLink.h"
#include "phone/Timers.h"

namespace phone::verify {

/// One link to the head unit that is looked at, whatever carries its bytes.
class LinkUnderTest {
 public:
  virtual ~LinkUnderTest() = default;
  virtual PhoneLink& link() = 0;
  /// Lets bytes travel both ways until `done`, or until `limit` is over; a medium on which nothing can happen
  /// any more need not wait for that, and an interruption ends the wait. True if `done` came.
  virtual bool runUntil(const std::function<bool()>& done, Micros limit) = 0;
};

/// Gives out links, one after the other.
class HeadUnit {
 public:
  virtual ~HeadUnit() = default;
  /// A link on which nothing has been said yet. Null, with `error` telling why, if there is no way to one.
  virtual std::unique_ptr<LinkUnderTest> connect(LinkOptions options, std::string* error) = 0;
  /// Whether the user wants to end. From then on a wait may end before its time.
  virtual bool interrupted() const { return false; }
};

}  // namespace phone::verify

#endif
