#pragma once

#include <memory>
#include <random>

/// Lets what is allocated after it lie somewhere else than in the last run. What a copy costs depends on how
/// its two places lie to each other, at times by half; a median over many layouts does not.
class HeapLayout {
 public:
  HeapLayout() : shift_(std::make_unique<char[]>(blockSize())) {}

 private:
  static std::size_t blockSize() {
    static std::mt19937 random;
    return 16 * std::uniform_int_distribution<std::size_t>(80, 512)(random);
  }

  std::unique_ptr<char[]> shift_;
};
