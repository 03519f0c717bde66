#pragma once

#include <atomic>
#include <cstdint>
#include <string>

#include "Bytes.h"

namespace test {

/// The content of message `number` of a stream: the number itself, then a pattern. The length differs from
/// one message to the next, is always even, and now and then fills more than one fragment.
Bytes numberedContent(std::uint64_t number);

/// A text that no other number has.
std::string numberedText(std::uint64_t number);

/// Follows messages of one kind, numbered from 0 on, as they come. Who takes one compares it with the one
/// that is due: a message that is lost, damaged, repeated or overtaken is not.
class Arrivals {
 public:
  /// The number of the message that has to come next, and how many have come.
  std::uint64_t due() const { return count; }
  /// A message has come. One thread at a time; the results may be read on any.
  void takes(bool isTheOneDue);
  /// "10000 as due", or which one was the first that was not.
  std::string words() const;

 private:
  static constexpr std::uint64_t NONE = UINT64_MAX;
  std::atomic<std::uint64_t> count{0};
  std::atomic<std::uint64_t> firstWrong{NONE};
};

/// What Arrivals::words says of `count` messages without fault.
std::string asDue(std::uint64_t count);

}  // namespace test
