#pragma once

#include <gtest/gtest.h>

#include "TestCredentials.h"
#include "VerifyHeadUnit.h"

namespace test {

/// The host of a complete head unit: every service, and callbacks that answer at once as far as `faults` let
/// them.
class VerifyHost {
 public:
  explicit VerifyHost(const HeadUnitFaults& faults);
  ~VerifyHost();
  VerifyHost(const VerifyHost&) = delete;
  VerifyHost& operator=(const VerifyHost&) = delete;

  /// The next frame to send; false if there is none.
  bool takeFrame(phone::Bytes* wireFrame);
  /// One whole frame from the phone.
  void giveFrame(const phone::Bytes& wireFrame);
  /// What the host does when nothing comes in. True if it did something.
  bool work();
  /// The host has ended the link.
  bool hasStopped() const;

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace test
