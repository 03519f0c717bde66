#pragma once

#include <atomic>
#include <cstdint>

/// A set of channel numbers, 0 to 255, that any thread may change and ask at any time.
class ChannelSet {
 public:
  ChannelSet() = default;
  ChannelSet(const ChannelSet&) = delete;
  ChannelSet& operator=(const ChannelSet&) = delete;

  void insert(unsigned char channel) { words[channel / 64].fetch_or(bitOf(channel)); }
  void erase(unsigned char channel) { words[channel / 64].fetch_and(~bitOf(channel)); }

  /// The first member from `channel` on, in ascending order and wrapping from 255 to 0; -1 if the set is
  /// empty.
  int firstFrom(unsigned char channel) const {
    const unsigned int word = channel / 64;
    const std::uint64_t upper = words[word] & ~(bitOf(channel) - 1);
    if (upper != 0) return memberOf(word, upper);
    for (unsigned int i = 1; i < 4; ++i) {
      const unsigned int other = (word + i) % 4;
      if (const std::uint64_t bits = words[other]) return memberOf(other, bits);
    }
    const std::uint64_t lower = words[word] & (bitOf(channel) - 1);
    return lower == 0 ? -1 : memberOf(word, lower);
  }

 private:
  static std::uint64_t bitOf(unsigned char channel) { return std::uint64_t{1} << (channel % 64); }
  static int memberOf(unsigned int word, std::uint64_t bits) {
    return static_cast<int>(word * 64) + __builtin_ctzll(bits);
  }

  std::atomic<std::uint64_t> words[4] = {};
};
