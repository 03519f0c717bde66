#pragma once

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

#include "protos.pb.h"

// For tables of enumerations and their numbers, which both ends of the link have to agree upon.

namespace test {

struct Enumerator {
  int constant;
  int number;
};

struct Enumeration {
  const char* name;
  bool (*isValid)(int);
  std::vector<Enumerator> all;
};

inline void PrintTo(const Enumeration& enumeration, std::ostream* out) { *out << enumeration.name; }

inline std::string nameOf(const testing::TestParamInfo<Enumeration>& info) { return info.param.name; }

class EnumerationTest : public testing::TestWithParam<Enumeration> {
 protected:
  static void expectTheseNumbersAndNoOther() {
    for (const Enumerator& one : GetParam().all) EXPECT_EQ(one.constant, one.number);
    expectNoOtherFrom(-300, 1000);
    expectNoOtherFrom(0x7F00, 0x8100);
  }

 private:
  static bool isTold(int number) {
    for (const Enumerator& one : GetParam().all) {
      if (one.number == number) return true;
    }
    return false;
  }
  static void expectNoOtherFrom(int first, int last) {
    for (int number = first; number <= last; ++number) {
      EXPECT_EQ(GetParam().isValid(number), isTold(number)) << number;
    }
  }
};

}  // namespace test
