#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace phone {

/// A NAL unit inside somebody else's bytes, without its start code. H.264's first byte of it:
///
///     bit   7        6 5        4 3 2 1 0
///           forbid   ref_idc    type (5 key slice, 6 SEI, 7 SPS, 8 PPS, 9 AUD)
struct NalUnit {
  const std::uint8_t* data = nullptr;
  std::size_t size = 0;

  int type() const { return data[0] & 0x1f; }
};

enum : int { NAL_KEY_SLICE = 5, NAL_SPS = 7, NAL_PPS = 8 };

/// The NAL units of a run of Annex B bytes, in order; empty ones are left out.
std::vector<NalUnit> splitAnnexB(const std::uint8_t* data, std::size_t size);

/// The sequence and picture parameter sets among Annex B bytes, each behind a four-byte start code.
std::vector<std::uint8_t> parameterSets(const std::uint8_t* data, std::size_t size);

}  // namespace phone
