#include "FixedRandom.h"

#define OPENSSL_SUPPRESS_DEPRECATED  // the only way to put numbers of one's own in
#include <openssl/rand.h>

#include <cstdint>

namespace {

std::uint64_t states[] = {1, 2, 3};
FixedRandom::Side drawing = FixedRandom::Side::credentials;

std::uint64_t& stateOf(FixedRandom::Side side) { return states[static_cast<int>(side)]; }

/// A small generator that is good enough to look random: splitmix64.
std::uint64_t next(std::uint64_t* state) {
  std::uint64_t value = *state += 0x9E3779B97F4A7C15U;
  value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9U;
  value = (value ^ (value >> 27)) * 0x94D049BB133111EBU;
  return value ^ (value >> 31);
}

int fill(unsigned char* bytes, int count) {
  for (int i = 0; i < count; ++i) bytes[i] = static_cast<unsigned char>(next(&stateOf(drawing)));
  return 1;
}

int alwaysReady() { return 1; }

const RAND_METHOD METHOD = {nullptr, fill, nullptr, nullptr, fill, alwaysReady};

}  // namespace

void FixedRandom::install() { RAND_set_rand_method(&METHOD); }

void FixedRandom::drawsFor(Side side) { drawing = side; }

void FixedRandom::restart(Side side) { stateOf(side) = static_cast<std::uint64_t>(side) + 1; }
